#include "kernel/KString.h"

#include "kernel/KClass.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KMemory.h"
#include "kernel/KStreamReading.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

K_DEFINE_CLASS(KString, KComparable)

namespace {

int32_t gLiveStrings = 0;

int32_t lengthOf(const char* text) { return text ? int32_t(std::strlen(text)) : 0; }

int32_t clip(int32_t value, int32_t low, int32_t high)
{
    if (value < low)
        return low;
    return value > high ? high : value;
}

// Case of the Windows set: ASCII, and the 28 accented letters of 0xE0 to
// 0xFD that have a partner 32 below. "ð", "÷", "þ", "ÿ" and "ß" stay as
// they are, as do the letters of the 0x80 row.
bool isAccentedLower(unsigned char c) { return c >= 0xE0 && c <= 0xFD && c != 0xF0 && c != 0xF7; }
bool isAccentedUpper(unsigned char c) { return c >= 0xC0 && c <= 0xDD && c != 0xD0 && c != 0xD7; }

char upperOf(char c)
{
    auto u = static_cast<unsigned char>(c);
    if ((u >= 'a' && u <= 'z') || isAccentedLower(u))
        return char(u - 32);
    return c;
}

char lowerOf(char c)
{
    auto u = static_cast<unsigned char>(c);
    if ((u >= 'A' && u <= 'Z') || isAccentedUpper(u))
        return char(u + 32);
    return c;
}

// The upper halves of the two conversion tables: the standard Mac OS Roman /
// Windows-1252 correspondence, 0x7F where a character has no partner, and a
// few deliberate substitutes (look-alikes for the quotes, dashes, ordinals and
// superscripts that the other set lacks). The lower halves are the identity.
constexpr unsigned char kMacToWindows[128] = {
    0xC4, 0xC5, 0xC7, 0xC9, 0xD1, 0xD6, 0xDC, 0xE1, // 80
    0xE0, 0xE2, 0xE4, 0xE3, 0xE5, 0xE7, 0xE9, 0xE8, // 88
    0xEA, 0xEB, 0xED, 0xEC, 0xEE, 0xEF, 0xF1, 0xF3, // 90
    0xF2, 0xF4, 0xF6, 0xF5, 0xFA, 0xF9, 0xFB, 0xFC, // 98
    0x86, 0xA4, 0xA2, 0xA3, 0xA7, 0x95, 0xB6, 0xDF, // A0
    0xAE, 0xA9, 0x99, 0xB4, 0xA8, 0x7F, 0xC6, 0xD8, // A8
    0x7F, 0xB1, 0x7F, 0x7F, 0xA5, 0xB5, 0x7F, 0x7F, // B0
    0x7F, 0x7F, 0x7F, 0xAA, 0xB0, 0x7F, 0xE6, 0xF8, // B8
    0xBF, 0xA1, 0xAC, 0x7F, 0x83, 0x7F, 0x7F, 0xAB, // C0
    0xBB, 0x85, 0x7F, 0xC0, 0xC3, 0xD5, 0x8C, 0x9C, // C8
    0xAD, 0x97, 0x94, 0x93, 0x7F, 0x7F, 0xF7, 0xB7, // D0
    0xFF, 0x9F, 0x2F, 0x80, 0x3C, 0x3E, 0x7F, 0x7F, // D8
    0x87, 0xB7, 0x82, 0x7F, 0x89, 0xC2, 0xCA, 0xC1, // E0
    0xCB, 0xC8, 0xCD, 0xCE, 0xCF, 0xCC, 0xD3, 0xD4, // E8
    0x7F, 0xD2, 0xDA, 0xDB, 0xD9, 0x7F, 0x88, 0x98, // F0
    0xAF, 0x7F, 0xB7, 0xB0, 0xB8, 0x7F, 0x7F, 0x7F, // F8
};

constexpr unsigned char kWindowsToMac[128] = {
    0xDB, 0x7F, 0xE2, 0xC4, 0xE3, 0xC9, 0xA0, 0xE0, // 80
    0xF6, 0xE4, 0x53, 0x3C, 0xCE, 0x7F, 0x7F, 0x7F, // 88
    0x7F, 0x7F, 0xAB, 0xD3, 0xD2, 0xA5, 0xD0, 0xD1, // 90
    0xF7, 0xAA, 0x53, 0x3E, 0xCF, 0x7F, 0x7F, 0xD9, // 98
    0x20, 0xC1, 0xA2, 0xA3, 0xA1, 0xB4, 0x7C, 0xA4, // A0
    0xAC, 0xA9, 0xBB, 0xC7, 0xC2, 0xD0, 0xA8, 0xF8, // A8
    0xBC, 0xB1, 0x32, 0x33, 0xAB, 0xB5, 0xA6, 0xE1, // B0
    0xFC, 0x31, 0x30, 0xC8, 0x7F, 0x7F, 0x7F, 0xC0, // B8
    0xCB, 0xE7, 0xE5, 0xCC, 0x80, 0x81, 0xAE, 0x82, // C0
    0xE9, 0x83, 0xE6, 0xE8, 0xED, 0xEA, 0xEB, 0xEC, // C8
    0x44, 0x84, 0xF1, 0xEE, 0xEF, 0xCD, 0x85, 0x78, // D0
    0xAF, 0xF4, 0xF2, 0xF3, 0x86, 0x59, 0x7F, 0xA7, // D8
    0x88, 0x87, 0x89, 0x8B, 0x8A, 0x8C, 0xBE, 0x8D, // E0
    0x8F, 0x8E, 0x90, 0x91, 0x93, 0x92, 0x94, 0x95, // E8
    0x7F, 0x96, 0x98, 0x97, 0x99, 0x9B, 0x9A, 0x7F, // F0
    0xBF, 0x9D, 0x9C, 0x9E, 0x9F, 0x79, 0x7F, 0xD8, // F8
};

void convertBytes(char* bytes, int32_t size, int32_t from, int32_t to)
{
    for (int32_t i = 0; i < size; ++i)
        bytes[i] = char(KString::convertChar(static_cast<unsigned char>(bytes[i]), from, to));
}

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
    charSet = charSetOfPlatform(platform);
    convertToHostCharSet();
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
    if (source == text && source)
        return *this;
    charSet = kHostCharSet;
    assign(source, lengthOf(source));
    return *this;
}

KThing* KString::deepCopy() const { return new KString(*this); }

// --- Storage ---------------------------------------------------------------

void KString::assign(const char* data, int32_t size)
{
    if (!data || size <= 0) {
        adopt(nullptr, 0);
        return;
    }
    char* fresh = allocateText(size);
    if (!fresh)
        return;
    KMemory::copy(data, fresh, size_t(size));
    adopt(fresh, size);
}

void KString::adopt(char* buffer, int32_t size)
{
    if (text)
        KMemory::dispose(text);
    text = size > 0 ? buffer : nullptr;
    length = size > 0 ? size : 0;
    if (size <= 0 && buffer)
        KMemory::dispose(buffer);
}

char* KString::allocateText(int32_t size)
{
    auto* buffer = static_cast<char*>(KMemory::allocate(size_t(size) + 1, false));
    if (buffer)
        buffer[size] = 0;
    return buffer;
}

// Every source is copied out of the old buffer before it is freed, so `data`
// may point into this string's own text.
void KString::splice(int32_t start, int32_t count, const char* data, int32_t size)
{
    int64_t wanted = int64_t(length) - count + size;
    if (wanted > INT32_MAX)
        return; // no string holds more than a long can count
    auto newLength = int32_t(wanted);
    if (newLength <= 0) {
        adopt(nullptr, 0);
        return;
    }
    char* fresh = allocateText(newLength);
    if (!fresh)
        return;
    KMemory::copy(text, fresh, size_t(start));
    KMemory::copy(data, fresh + start, size_t(size));
    KMemory::copy(text + start + count, fresh + start + size, size_t(length - start - count));
    adopt(fresh, newLength);
}

void KString::append(const char* data, int32_t size)
{
    if (data && size > 0)
        splice(length, 0, data, size);
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

// --- Comparison ------------------------------------------------------------

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

const KString* KString::asString(const KComparable& other) { return dynamic_cast<const KString*>(&other); }

bool KString::operator==(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) == 0 : KComparable::operator==(other);
}

bool KString::operator!=(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) != 0 : KComparable::operator!=(other);
}

bool KString::operator>(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) > 0 : KComparable::operator>(other);
}

bool KString::operator<(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) < 0 : KComparable::operator<(other);
}

bool KString::operator>=(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) >= 0 : KComparable::operator>=(other);
}

bool KString::operator<=(const KComparable& other) const
{
    const KString* s = asString(other);
    return s ? compare(*s) <= 0 : KComparable::operator<=(other);
}

bool KString::operator==(const char* other) const
{
    int32_t otherLength = lengthOf(other);
    return otherLength == length && (length == 0 || std::memcmp(text, other, size_t(length)) == 0);
}

bool KString::operator!=(const char* other) const { return !operator==(other); }

// --- Concatenation ---------------------------------------------------------

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
    append(other.text, other.length);
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

void KString::prepend(const KString& other)
{
    if (other.length > 0)
        splice(0, 0, other.text, other.length);
}

void KString::prepend(const char* other)
{
    int32_t size = lengthOf(other);
    if (size > 0)
        splice(0, 0, other, size);
}

void KString::prepend(char c) { splice(0, 0, &c, 1); }

void KString::appendCRLF() { append("\r\n", 2); }
void KString::appendCR() { append("\r", 1); }
void KString::appendLF() { append("\n", 1); }

// --- Case ------------------------------------------------------------------

void KString::toUpper()
{
    for (int32_t i = 0; i < length; ++i)
        text[i] = upperOf(text[i]);
}

void KString::toLower()
{
    for (int32_t i = 0; i < length; ++i)
        text[i] = lowerOf(text[i]);
}

void KString::capitalize()
{
    if (length > 0)
        text[0] = upperOf(text[0]);
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

KString KString::getCapitalized() const
{
    KString copy(*this);
    copy.capitalize();
    return copy;
}

// --- Numbers ---------------------------------------------------------------

int32_t KString::toLong() const
{
    uint32_t value = 0;
    bool negative = false;
    for (int32_t i = 0; i < length; ++i) {
        char c = text[i];
        if (c >= '0' && c <= '9')
            value = value * 10 + uint32_t(c - '0');
        else if (c == '-')
            negative = true;
        else if (c == '+')
            negative = false;
        else
            break;
    }
    return int32_t(negative ? 0u - value : value);
}

double KString::toDouble() const
{
    if (length == 0)
        return 0.0;
    int32_t i = 0;
    bool negative = false;
    if (text[0] == '-' || text[0] == '+') {
        negative = text[0] == '-';
        i = 1;
    }
    // Unsigned arithmetic wraps in 32 bits exactly as the stored form did.
    uint32_t whole = 0;
    for (; i < length && text[i] >= '0' && text[i] <= '9'; ++i)
        whole = whole * 10 + uint32_t(text[i] - '0');
    ++i; // the separator, whatever it is
    uint32_t fraction = 0;
    uint32_t scale = 1;
    int32_t decimals = 0;
    for (; i < length && text[i] >= '0' && text[i] <= '9'; ++i) {
        fraction = fraction * 10 + uint32_t(text[i] - '0');
        scale *= 10;
        ++decimals;
    }
    auto combined = int32_t(whole * scale + fraction);
    if (negative)
        combined = int32_t(0u - uint32_t(combined));
    return double(combined) / std::pow(10.0, decimals);
}

void KString::setFromLong(int32_t value)
{
    char buffer[16];
    int size = std::snprintf(buffer, sizeof buffer, "%ld", long(value));
    charSet = kHostCharSet;
    assign(buffer, size);
}

void KString::setFromHex(uint32_t value)
{
    char buffer[16];
    int size = std::snprintf(buffer, sizeof buffer, "0x%lX", static_cast<unsigned long>(value));
    charSet = kHostCharSet;
    assign(buffer, size);
}

void KString::setFromDouble(double value, int16_t decimals)
{
    charSet = kHostCharSet;
    if (!std::isfinite(value)) {
        char buffer[8];
        int size = std::snprintf(buffer, sizeof buffer, "%f", value);
        assign(buffer, size);
        return;
    }
    decimals = int16_t(clip(decimals, 0, 8));
    bool negative = value < 0;
    if (negative)
        value = -value;

    // One digit more than asked for decides the rounding, half up.
    double whole = std::trunc(value);
    int64_t scale = 10;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    auto digits = int64_t(std::trunc(double(scale) * (value - whole)));
    if (digits % 10 >= 5) {
        if (digits + 5 >= scale) {
            whole += 1;
            digits = ((digits + 5) % scale) / 10;
        } else {
            digits = digits / 10 + 1;
        }
    } else {
        digits /= 10;
    }

    char buffer[400];
    int size = std::snprintf(buffer, sizeof buffer, "%s%.0f", negative ? "-" : "", whole);
    if (decimals > 0)
        size += std::snprintf(buffer + size, sizeof buffer - size_t(size), ".%0*lld", int(decimals),
                              static_cast<long long>(digits));
    assign(buffer, size);
}

void KString::setFromMilliseconds(int32_t ms, const KString& format)
{
    if (ms < 0)
        ms = 0;
    const int32_t fields[4] = {
        (ms / 3600000) % 24,
        (ms / 60000) % 60,
        (ms / 1000) % 60,
        (ms / 10) % 100,
    };
    const char letters[4] = { 'h', 'm', 's', 'c' };
    char buffer[32];
    int size = 0;
    for (int i = 0; i < 4; ++i) {
        if (format.findChar(letters[i]) < 0)
            continue;
        size += std::snprintf(buffer + size, sizeof buffer - size_t(size), "%s%02ld", size > 0 ? ":" : "",
                              long(fields[i]));
    }
    charSet = kHostCharSet;
    assign(buffer, size);
}

// --- Searching -------------------------------------------------------------

namespace {

int32_t findBytes(const char* text, int32_t length, const char* pattern, int32_t size, int32_t from, bool backwards)
{
    if (size <= 0 || size > length)
        return -1;
    int32_t last = length - size;
    if (backwards) {
        for (int32_t i = clip(from, -1, last); i >= 0; --i) {
            if (std::memcmp(text + i, pattern, size_t(size)) == 0)
                return i;
        }
        return -1;
    }
    for (int32_t i = clip(from, 0, last + 1); i <= last; ++i) {
        if (std::memcmp(text + i, pattern, size_t(size)) == 0)
            return i;
    }
    return -1;
}

} // namespace

int32_t KString::find(const KString& pattern, int32_t from, bool backwards) const
{
    return findBytes(text, length, pattern.text, pattern.length, from, backwards);
}

int32_t KString::find(const char* pattern, int32_t from, bool backwards) const
{
    return findBytes(text, length, pattern, lengthOf(pattern), from, backwards);
}

int32_t KString::findChar(char c, int32_t after) const
{
    for (int32_t i = after < -1 ? 0 : after + 1; i < length; ++i) {
        if (text[i] == c)
            return i;
    }
    return -1;
}

bool KString::contains(const KString& pattern) const { return find(pattern) >= 0; }
bool KString::contains(const char* pattern) const { return find(pattern) >= 0; }

bool KString::containsAnyOf(const KString& characters) const
{
    for (int32_t i = 0; i < characters.length; ++i) {
        if (findChar(characters.text[i]) >= 0)
            return true;
    }
    return false;
}

int32_t KString::countChar(char c) const
{
    int32_t count = 0;
    for (int32_t i = 0; i < length; ++i)
        count += text[i] == c ? 1 : 0;
    return count;
}

// --- Parts -----------------------------------------------------------------

KString KString::left(int32_t count) const { return mid(0, count); }

KString KString::right(int32_t count) const
{
    count = clip(count, 0, length);
    return mid(length - count, count);
}

KString KString::mid(int32_t start, int32_t count) const
{
    KString result;
    mid(start, count, result);
    return result;
}

void KString::mid(int32_t start, int32_t count, KString& destination) const
{
    start = clip(start, 0, length);
    count = clip(count, 0, length - start);
    destination.charSet = charSet;
    destination.assign(text ? text + start : nullptr, count);
}

void KString::truncate(int32_t newLength)
{
    if (length > newLength)
        removeRange(newLength, length);
}

void KString::removeRange(int32_t start, int32_t count)
{
    start = clip(start, 0, length);
    count = clip(count, 0, length - start);
    if (count > 0)
        splice(start, count, nullptr, 0);
}

void KString::removeChar(char c)
{
    int32_t kept = length - countChar(c);
    if (kept == length)
        return;
    char* fresh = kept > 0 ? allocateText(kept) : nullptr;
    if (kept > 0 && !fresh)
        return;
    int32_t j = 0;
    for (int32_t i = 0; i < length && kept > 0; ++i) {
        if (text[i] != c)
            fresh[j++] = text[i];
    }
    adopt(fresh, kept);
}

void KString::trimLeft(char c)
{
    int32_t count = 0;
    while (count < length && text[count] == c)
        ++count;
    removeRange(0, count);
}

void KString::trimRight(char c)
{
    int32_t kept = length;
    while (kept > 0 && text[kept - 1] == c)
        --kept;
    truncate(kept);
}

void KString::pad(char c, int32_t width, bool inFront)
{
    if (width <= length)
        return;
    char* fresh = allocateText(width);
    if (!fresh)
        return;
    int32_t fill = width - length;
    std::memset(inFront ? fresh : fresh + length, c, size_t(fill));
    KMemory::copy(text, inFront ? fresh + fill : fresh, size_t(length));
    adopt(fresh, width);
}

void KString::padLeft(char c, int32_t width) { pad(c, width, true); }
void KString::padRight(char c, int32_t width) { pad(c, width, false); }

void KString::insertAt(int32_t index, const KString& other)
{
    if (other.length > 0)
        splice(clip(index, 0, length), 0, other.text, other.length);
}

void KString::insertCharAt(int32_t index, char c) { splice(clip(index, 0, length), 0, &c, 1); }

void KString::replaceChar(char from, char to)
{
    for (int32_t i = 0; i < length; ++i) {
        if (text[i] == from)
            text[i] = to;
    }
}

KString KString::withArguments(std::initializer_list<KString> arguments) const
{
    std::string out;
    for (int32_t i = 0; i < length; ++i) {
        char next = i + 1 < length ? text[i + 1] : 0;
        auto number = size_t(next - '0');
        if (text[i] == '%' && next >= '1' && next <= '9' && number <= arguments.size()) {
            const KString& argument = arguments.begin()[number - 1];
            out.append(argument.c_str(), size_t(argument.length));
            ++i;
        } else {
            out += text[i];
        }
    }
    KString result;
    result.assign(out.data(), int32_t(out.size()));
    result.charSet = charSet;
    return result;
}

void KString::replace(const KString& from, const KString& to)
{
    if (from.length == 0 || find(from) < 0)
        return;
    // Built in one pass so that many replacements stay linear. `from` and
    // `to` may be this very string: they are only read before adopt().
    int64_t count = 0;
    for (int32_t at = find(from); at >= 0; at = find(from, at + from.length))
        ++count;
    int64_t newLength = int64_t(length) + count * (int64_t(to.length) - from.length);
    if (newLength > INT32_MAX)
        return;
    char* fresh = newLength > 0 ? allocateText(int32_t(newLength)) : nullptr;
    if (newLength > 0 && !fresh)
        return;
    int32_t read = 0;
    int32_t write = 0;
    for (int32_t at = find(from); at >= 0 && fresh; at = find(from, read)) {
        KMemory::copy(text + read, fresh + write, size_t(at - read));
        write += at - read;
        KMemory::copy(to.text, fresh + write, size_t(to.length));
        write += to.length;
        read = at + from.length;
    }
    if (fresh)
        KMemory::copy(text + read, fresh + write, size_t(length - read));
    adopt(fresh, int32_t(newLength));
}

void KString::copyTo(char* destination) const
{
    KMemory::copy(text, destination, size_t(length));
    destination[length] = 0;
}

// --- Character sets --------------------------------------------------------

unsigned char KString::convertChar(unsigned char c, int32_t from, int32_t to)
{
    if (c < 0x80 || from == to)
        return c;
    if (from == MacintoshSet && to == WindowsSet)
        return kMacToWindows[c - 0x80];
    if (from == WindowsSet && to == MacintoshSet)
        return kWindowsToMac[c - 0x80];
    return c;
}

void KString::convertToCharSet(int32_t set)
{
    if (set == charSet)
        return;
    convertBytes(text, length, charSet, set);
    charSet = set;
}

int32_t KString::liveStrings() { return gLiveStrings; }

int32_t KString::charSetOfPlatform(int32_t platform) { return platform == Windows ? WindowsSet : MacintoshSet; }

// Persistence.

void KString::writeToFile(KFile& file, int32_t)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(int16_t(charSet));
    file.writeCountedText(text, length);
    writer.end();
}

void KString::readFromFile(KFile& file)
{
    clear();
    KStreamReading::readMainSection(file, classRecord, [&](int32_t) {
        int16_t set = file.readShort();
        file.readCountedText(*this);
        charSet = set;
        convertToHostCharSet();
    });
}

void KString::describe(KJsonWriter& out) const
{
    out.member("charSet", charSet);
    out.member("text", *this);
}
