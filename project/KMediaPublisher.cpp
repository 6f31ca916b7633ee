#include "project/KMediaPublisher.h"
#include "kernel/KClass.h"
#include <filesystem>
#include <set>
#include <system_error>

K_DEFINE_CLASS(KMediaPublisher, KThing)

namespace fs = std::filesystem;

namespace {

// Plain letters for the accented letters of Latin-1, from U+00C0.
constexpr const char* kLatinFolds[64] = {
    "A", "A", "A", "A", "A", "A", "AE", "C", "E",  "E",  "E", "E", "I", "I", "I", "I", "D",  "N", "O",  "O", "O", "O",
    "O", "x", "O", "U", "U", "U", "U",  "Y", "Th", "ss", "a", "a", "a", "a", "a", "a", "ae", "c", "e",  "e", "e", "e",
    "i", "i", "i", "i", "d", "n", "o",  "o", "o",  "o",  "o", "_", "o", "u", "u", "u", "u",  "y", "th", "y",
};

bool isRefused(char c)
{
    switch (c) {
    case '\\':
    case ':':
    case '/':
    case '*':
    case '?':
    case '"':
    case '<':
    case '>':
    case '|':
        return true;
    default:
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    }
}

// The next code point of `text` from `i`; a broken sequence counts as one
// byte outside ASCII.
uint32_t nextCodePoint(const std::string& text, size_t& i)
{
    auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
    unsigned char lead = byte(i);
    if (lead < 0x80) {
        ++i;
        return lead;
    }
    size_t extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (extra == 0 || i + extra >= text.size()) {
        ++i;
        return 0xFFFD;
    }
    uint32_t point = lead & (0x3F >> extra);
    for (size_t k = 1; k <= extra; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        point = point << 6 | (byte(i + k) & 0x3F);
    }
    i += extra + 1;
    return point;
}

void splitName(const std::string& fileName, std::string& base, std::string& extension)
{
    size_t dot = fileName.rfind('.');
    if (dot == std::string::npos || dot == 0) {
        base = fileName;
        extension.clear();
        return;
    }
    base = fileName.substr(0, dot);
    extension = fileName.substr(dot + 1);
}

} // namespace

KMediaPublisher::KMediaPublisher() = default;

KMediaPublisher::~KMediaPublisher() = default;

std::string KMediaPublisher::safeName(const std::string& utf8)
{
    std::string out;
    for (size_t i = 0; i < utf8.size();) {
        uint32_t point = nextCodePoint(utf8, i);
        if (point < 0x80)
            out += isRefused(char(point)) ? '_' : char(point);
        else if (point >= 0xC0 && point < 0x100)
            out += kLatinFolds[point - 0xC0];
        else
            out += '_';
    }
    while (!out.empty() && (out.back() == '.' || out.back() == ' '))
        out.pop_back();
    return out;
}

bool KMediaPublisher::taken(const std::string& name) const
{
    std::error_code error;
    if (fs::exists(fs::path(directory) / name, error))
        return true;
    for (const auto& entry : published) {
        if (entry.second == name)
            return true;
    }
    return false;
}

// The base cut so that base, dot and extension fit, then "-2" onwards
// while the name is taken.
std::string KMediaPublisher::freeName(const std::string& base, const std::string& extension) const
{
    int32_t room = maxNameLength - int32_t(extension.size()) - (extension.empty() ? 0 : 1);
    std::string cut = base.substr(0, size_t(std::max(1, room)));
    std::string suffix = extension.empty() ? std::string() : "." + extension;
    std::string name = cut + suffix;
    for (int32_t counter = 2; taken(name); ++counter) {
        if (counter > kLastCounter)
            return std::string();
        std::string number = "-" + std::to_string(counter);
        int32_t left = room - int32_t(number.size());
        name = base.substr(0, size_t(std::max(1, left))) + number + suffix;
    }
    return name;
}

std::string KMediaPublisher::reserveName(const std::string& source)
{
    auto known = published.find(source);
    if (known != published.end())
        return known->second;
    std::string base;
    std::string extension;
    splitName(safeName(fs::path(source).filename().string()), base, extension);
    if (base.empty())
        base = "media";
    std::string name = freeName(base, safeName(extension));
    if (!name.empty())
        published[source] = name;
    return name;
}

bool KMediaPublisher::publish(const std::string& source, std::string& name)
{
    name = reserveName(source);
    if (name.empty() || !hasDirectory())
        return false;
    fs::path target = fs::path(directory) / name;
    std::error_code error;
    if (fs::exists(target, error))
        return true;
    if (!fs::copy_file(source, target, error))
        return false;
    bytesCopied += int64_t(fs::file_size(target, error));
    return true;
}
