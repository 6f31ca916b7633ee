#include "project/legacy/ZFile.h"

#include <cstring>
#include <fstream>
#include <iterator>

ZFile::ZFile(std::vector<uint8_t> content, int32_t sourcePlatform)
    : bytes(std::move(content))
    , platform(sourcePlatform)
{
}

bool ZFile::readFile(const std::string& path, std::vector<uint8_t>& out)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    out.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

bool ZFile::take(size_t size, const uint8_t*& data)
{
    if (error)
        return false;
    if (size > remaining()) {
        position = bytes.size();
        fail("Could not read file!", "ZFile::read");
        error = kShortRead;
        return false;
    }
    data = bytes.data() + position;
    position += size;
    return true;
}

uint8_t ZFile::readByte()
{
    const uint8_t* data = nullptr;
    return take(1, data) ? data[0] : 0;
}

int16_t ZFile::readShort()
{
    const uint8_t* data = nullptr;
    if (!take(2, data))
        return 0;
    return int16_t(uint16_t(data[0] << 8 | data[1]));
}

int32_t ZFile::readLong()
{
    const uint8_t* data = nullptr;
    if (!take(4, data))
        return 0;
    return int32_t(uint32_t(data[0]) << 24 | uint32_t(data[1]) << 16 | uint32_t(data[2]) << 8 | uint32_t(data[3]));
}

double ZFile::readDouble()
{
    const uint8_t* data = nullptr;
    if (!take(8, data))
        return 0.0;
    uint8_t reversed[8];
    for (int i = 0; i < 8; ++i)
        reversed[i] = data[7 - i];
    double value;
    std::memcpy(&value, reversed, sizeof value);
    return value;
}

int32_t ZFile::peekLong(size_t ahead) const
{
    if (ahead > remaining() || remaining() - ahead < 4)
        return 0;
    const uint8_t* data = bytes.data() + position + ahead;
    return int32_t(uint32_t(data[0]) << 24 | uint32_t(data[1]) << 16 | uint32_t(data[2]) << 8 | uint32_t(data[3]));
}

bool ZFile::readRaw(void* target, size_t size)
{
    const uint8_t* data = nullptr;
    if (!take(size, data))
        return false;
    std::memcpy(target, data, size);
    return true;
}

KString ZFile::readString()
{
    uint16_t length = uint16_t(readShort());
    const uint8_t* data = nullptr;
    if (!take(length, data))
        return KString();
    std::string text;
    text.reserve(length + 8);
    for (uint16_t i = 0; i < length; ++i) {
        char c = char(data[i]);
        if (c == '\0')
            break;
        text += c;
        bool loneReturn = c == '\r' && (i + 1 >= length || data[i + 1] != '\n');
        if (loneReturn)
            text += '\n';
    }
    return KString(text.c_str(), platform);
}

void ZFile::fail(const std::string& text, const std::string& location)
{
    if (!failureText.empty())
        return;
    failureText = text;
    failureLocation = location;
    if (!error)
        error = -1;
}

bool ZFile::couldHold(int64_t count, int64_t size) const
{
    return count >= 0 && size > 0 && count <= int64_t(remaining()) / size;
}

bool ZFile::enter()
{
    if (depth >= kMaximumDepth) {
        fail("Objects nested too deeply.", "ZFile::enter");
        return false;
    }
    ++depth;
    return true;
}
