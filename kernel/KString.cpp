#include "kernel/KString.h"

#include "kernel/KClass.h"
#include "kernel/KMemory.h"

#include <cstring>

K_DEFINE_CLASS(KString, KComparable)

namespace {

int32_t gLiveStrings = 0;

// Case mapping of the Windows set: ASCII, the Latin-1 letters, and the four
// letters of the 0x80 row that have a case partner.
unsigned char upperOf(unsigned char c)
{
    if (c >= 'a' && c <= 'z')
        return c - 32;
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7)
        return c - 32;
    switch (c) {
    case 0x9A:
        return 0x8A;
    case 0x9C:
        return 0x8C;
    case 0x9E:
        return 0x8E;
    case 0xFF:
        return 0x9F;
    default:
        return c;
    }
}

unsigned char lowerOf(unsigned char c)
{
    if (c >= 'A' && c <= 'Z')
        return c + 32;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return c + 32;
    switch (c) {
    case 0x8A:
        return 0x9A;
    case 0x8C:
        return 0x9C;
    case 0x8E:
        return 0x9E;
    case 0x9F:
        return 0xFF;
    default:
        return c;
    }
}

int32_t lengthOf(const char* text) { return text ? int32_t(std::strlen(text)) : 0; }

} // namespace

KString::KString() { ++gLiveStrings; }

KString::KString(const KString& other)
    : KComparable(other)
    , charSet(other.charSet)
{
    ++gLiveStrings;
    assign(other.text, other.length);
}

KString::KString(const char* source)
{
    ++gLiveStrings;
    assign(source, lengthOf(source));
}

KString::KString(const char* source, int32_t platform)
{
    ++gLiveStrings;
    assign(source, lengthOf(source));
    (void)platform;
}

KString::~KString()
{
    --gLiveStrings;
    if (text)
        KMemory::dispose(text);
}

KString& KString::operator=(const KString& other)
{
    if (this == &other)
        return *this;
    charSet = other.charSet;
    assign(other.text, other.length);
    return *this;
}

KString& KString::operator=(const char* source)
{
    if (source == text)
        return *this;
    assign(source, lengthOf(source));
    return *this;
}

KThing* KString::deepCopy() const { return new KString(*this); }

void KString::assign(const char* data, int32_t size)
{
    char* fresh = nullptr;
    if (data && size > 0) {
        fresh = static_cast<char*>(KMemory::allocate(size_t(size) + 1, false));
        if (!fresh)
            return;
        KMemory::copy(data, fresh, size_t(size));
        fresh[size] = 0;
    } else {
        size = 0;
    }
    if (text)
        KMemory::dispose(text);
    text = fresh;
    length = size;
}

void KString::append(const char* data, int32_t size)
{
    if (!data || size <= 0)
        return;
    auto* fresh = static_cast<char*>(KMemory::allocate(size_t(length) + size_t(size) + 1, false));
    if (!fresh)
        return;
    KMemory::copy(text, fresh, size_t(length));
    KMemory::copy(data, fresh + length, size_t(size));
    fresh[length + size] = 0;
    if (text)
        KMemory::dispose(text);
    text = fresh;
    length += size;
}

void KString::setText(const void* data, int32_t size) { assign(static_cast<const char*>(data), size); }

void KString::clear()
{
    assign(nullptr, 0);
    charSet = kHostCharSet;
}

char KString::charAt(int32_t index) const
{
    if (index < 0 || index >= length)
        return 0;
    return text[index];
}

void KString::setCharAt(int32_t index, char c)
{
    if (index >= 0 && index < length)
        text[index] = c;
}

int32_t KString::compare(const KString& other) const
{
    int32_t shorter = length < other.length ? length : other.length;
    for (int32_t i = 0; i < shorter; ++i) {
        auto a = static_cast<signed char>(text[i]);
        auto b = static_cast<signed char>(other.text[i]);
        if (a != b)
            return a < b ? -1 : 1;
    }
    if (length == other.length)
        return 0;
    return length < other.length ? -1 : 1;
}

namespace {
const KString& asString(const KComparable& c) { return static_cast<const KString&>(c); }
}

bool KString::operator==(const KComparable& other) const { return compare(asString(other)) == 0; }
bool KString::operator!=(const KComparable& other) const { return compare(asString(other)) != 0; }
bool KString::operator>(const KComparable& other) const { return compare(asString(other)) > 0; }
bool KString::operator<(const KComparable& other) const { return compare(asString(other)) < 0; }
bool KString::operator>=(const KComparable& other) const { return compare(asString(other)) >= 0; }
bool KString::operator<=(const KComparable& other) const { return compare(asString(other)) <= 0; }

bool KString::operator==(const char* other) const
{
    int32_t otherLength = lengthOf(other);
    return otherLength == length && (length == 0 || std::memcmp(text, other, size_t(length)) == 0);
}

bool KString::operator!=(const char* other) const { return !operator==(other); }

KString KString::operator+(const KString& other) const
{
    KString result(*this);
    result.append(other.text, other.length);
    return result;
}

KString KString::operator+(const char* other) const
{
    KString result(*this);
    result.append(other, lengthOf(other));
    return result;
}

KString KString::operator+(char c) const
{
    KString result(*this);
    result.append(&c, 1);
    return result;
}

KString& KString::operator+=(const KString& other)
{
    if (this == &other) {
        KString copy(other);
        append(copy.text, copy.length);
    } else {
        append(other.text, other.length);
    }
    return *this;
}

KString& KString::operator+=(const char* other)
{
    append(other, lengthOf(other));
    return *this;
}

KString& KString::operator+=(char c)
{
    append(&c, 1);
    return *this;
}

void KString::toUpper()
{
    for (int32_t i = 0; i < length; ++i)
        text[i] = char(upperOf(static_cast<unsigned char>(text[i])));
}

void KString::toLower()
{
    for (int32_t i = 0; i < length; ++i)
        text[i] = char(lowerOf(static_cast<unsigned char>(text[i])));
}

KString KString::getUpper() const
{
    KString copy(*this);
    copy.toUpper();
    return copy;
}

KString KString::getLower() const
{
    KString copy(*this);
    copy.toLower();
    return copy;
}

int32_t KString::liveStrings() { return gLiveStrings; }

int32_t KString::charSetOfPlatform(int32_t platform) { return platform == Windows ? WindowsSet : MacintoshSet; }
