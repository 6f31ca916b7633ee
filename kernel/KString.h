#pragma once

#include "kernel/KComparable.h"

#include <initializer_list>

// An 8-bit string that knows its character set: 0 the Macintosh set, 1 the
// Windows set (the host's). An empty string holds no buffer at all, and
// getText() hands that null out, so callers test isEmpty() first.
//
// Storage is exact: every change reallocates to the new length. Building long
// text by repeated appending is therefore quadratic; use KStringBuilder.
//
// Indices and counts are clipped, never raised: a read outside the text gives
// 0, a write outside it is ignored.
class KString : public KComparable {
    K_DECLARE_CLASS(KString)
public:
    enum CharSet : int32_t { MacintoshSet = 0, WindowsSet = 1 };
    enum Platform : int32_t { Macintosh = 1, Windows = 2 };
    static constexpr int32_t kHostPlatform = Windows;
    static constexpr int32_t kHostCharSet = WindowsSet;

    KString();
    KString(const KString& other);
    KString(const char* text);
    // `text` is in the set of `platform` and is converted to the host's.
    KString(const char* text, int32_t platform);
    ~KString() override;

    KString& operator=(const KString& other);
    KString& operator=(const char* text);

    KThing* deepCopy() const override;
    // Section 1: short charSet, long length, then (when not empty) the
    // text and its terminator. Text in another set is converted on reading.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    int32_t getLength() const { return length; }
    const char* getText() const { return text; }
    // The text, or "" for an empty string: for code that needs a C string.
    const char* c_str() const { return text ? text : ""; }
    bool isEmpty() const { return length == 0; }
    int32_t getCharSet() const { return charSet; }
    void setCharSet(int32_t set) { charSet = set; }
    void setText(const void* data, int32_t size);
    void clear();

    char operator[](int32_t index) const { return charAt(index); }
    char charAt(int32_t index) const;
    void setCharAt(int32_t index, char c);

    // Another KComparable than a string is not comparable: the KComparable
    // default answers for it.
    bool operator==(const KComparable& other) const override;
    bool operator!=(const KComparable& other) const override;
    bool operator>(const KComparable& other) const override;
    bool operator<(const KComparable& other) const override;
    bool operator>=(const KComparable& other) const override;
    bool operator<=(const KComparable& other) const override;
    bool operator==(const KString& other) const { return compare(other) == 0; }
    bool operator!=(const KString& other) const { return compare(other) != 0; }
    // Null counts as the empty string.
    bool operator==(const char* other) const;
    bool operator!=(const char* other) const;
    // Byte-wise as signed chars; with equal prefixes the longer is greater.
    // High-bit characters therefore sort before ASCII.
    int32_t compare(const KString& other) const;

    KString operator+(const KString& other) const;
    KString operator+(const char* other) const;
    KString operator+(char c) const;
    KString& operator+=(const KString& other);
    KString& operator+=(const char* other);
    KString& operator+=(char c);
    void prepend(const KString& other);
    void prepend(const char* other);
    void prepend(char c);
    void appendCRLF();
    void appendCR();
    void appendLF();

    // Case follows the Windows set: ASCII and 28 accented Latin-1 letters.
    void toUpper();
    void toLower();
    void capitalize();
    KString getUpper() const;
    KString getLower() const;
    KString getCapitalized() const;

    // Digits accumulate; "-" and "+" anywhere set the sign, the last one
    // winning; any other character ends the number.
    int32_t toLong() const;
    // A sign only in front, whole digits, one separator of any kind, fraction
    // digits. The digits wrap in 32 bits as the stored values always did.
    double toDouble() const;
    void setFromLong(int32_t value);
    // "0x" and upper-case digits, no padding.
    void setFromHex(uint32_t value);
    // Rounds half up at `decimals` places (at most 8); no point for 0.
    void setFromDouble(double value, int16_t decimals);
    // The fields whose letter ("h", "m", "s", "c") occurs in `format`, in that
    // fixed order, two digits at least, joined by ":". Negative times count
    // as 0.
    void setFromMilliseconds(int32_t ms, const KString& format);

    // The index of `pattern` at or after `from` (at or before it when
    // searching backwards), or -1. An empty pattern is never found.
    int32_t find(const KString& pattern, int32_t from = 0, bool backwards = false) const;
    int32_t find(const char* pattern, int32_t from = 0, bool backwards = false) const;
    // The first index above `after` that holds `c`, or -1; -1 starts at 0.
    int32_t findChar(char c, int32_t after = -1) const;
    bool contains(const KString& pattern) const;
    bool contains(const char* pattern) const;
    bool containsAnyOf(const KString& characters) const;
    int32_t countChar(char c) const;

    KString left(int32_t count) const;
    KString right(int32_t count) const;
    // A negative start counts as 0; the count is clipped to the end.
    KString mid(int32_t start, int32_t count) const;
    void mid(int32_t start, int32_t count, KString& destination) const;
    void truncate(int32_t newLength);

    void removeRange(int32_t start, int32_t count);
    void removeChar(char c);
    void trimLeft(char c = ' ');
    void trimRight(char c = ' ');
    // Adds `c` in front (or behind) until the string is `width` long.
    void padLeft(char c, int32_t width);
    void padRight(char c, int32_t width);
    // The index is clipped to the text: below it prepends, past it appends.
    void insertAt(int32_t index, const KString& other);
    void insertCharAt(int32_t index, char c);
    void replaceChar(char from, char to);
    // Every occurrence; the search goes on behind each replacement.
    void replace(const KString& from, const KString& to);
    // A copy in which "%1" to "%9" stand for the arguments in order, so that
    // a translated sentence may place them where its language wants. A
    // number without an argument stays; inserted text is not scanned again.
    KString withArguments(std::initializer_list<KString> arguments) const;

    // Writes `length` bytes and a terminator.
    void copyTo(char* destination) const;

    // Re-encodes the text byte by byte into `set` and tags it so.
    void convertToCharSet(int32_t set);
    void convertToHostCharSet() { convertToCharSet(kHostCharSet); }
    // The byte that `c` of set `from` becomes in set `to`.
    static unsigned char convertChar(unsigned char c, int32_t from, int32_t to);

    static int32_t liveStrings();
    static int32_t charSetOfPlatform(int32_t platform);

protected:
    void append(const char* data, int32_t size);
    void assign(const char* data, int32_t size);
    // Replaces `count` bytes at `start` by `size` bytes of `data`, in one
    // allocation. Arguments must already be clipped.
    void splice(int32_t start, int32_t count, const char* data, int32_t size);

private:
    // Takes `buffer` (of `size` bytes plus terminator) as the new text.
    void adopt(char* buffer, int32_t size);
    static char* allocateText(int32_t size);
    void pad(char c, int32_t width, bool inFront);
    static const KString* asString(const KComparable& other);

    int32_t charSet = kHostCharSet;
    int32_t length = 0;
    char* text = nullptr;
};
