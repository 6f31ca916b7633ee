#pragma once

#include "kernel/KComparable.h"

// An 8-bit string that knows its character set: 0 the Macintosh set, 1 the
// Windows set (the host's). An empty string holds no buffer at all, and
// getText() hands that null out, so callers test isEmpty() first.
//
// Storage is exact: every change reallocates to the new length. Building long
// text by repeated appending is therefore quadratic; use a buffer instead.
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
    KString(const char* text, int32_t platform);
    ~KString() override;

    KString& operator=(const KString& other);
    KString& operator=(const char* text);

    KThing* deepCopy() const override;

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

    bool operator==(const KComparable& other) const override;
    bool operator!=(const KComparable& other) const override;
    bool operator>(const KComparable& other) const override;
    bool operator<(const KComparable& other) const override;
    bool operator>=(const KComparable& other) const override;
    bool operator<=(const KComparable& other) const override;
    bool operator==(const char* other) const;
    bool operator!=(const char* other) const;
    // Byte-wise as signed chars; with equal prefixes the longer is greater.
    int32_t compare(const KString& other) const;

    KString operator+(const KString& other) const;
    KString operator+(const char* other) const;
    KString operator+(char c) const;
    KString& operator+=(const KString& other);
    KString& operator+=(const char* other);
    KString& operator+=(char c);

    void toUpper();
    void toLower();
    KString getUpper() const;
    KString getLower() const;

    static int32_t liveStrings();
    static int32_t charSetOfPlatform(int32_t platform);

protected:
    void append(const char* data, int32_t size);
    void assign(const char* data, int32_t size);

private:
    int32_t charSet = kHostCharSet;
    int32_t length = 0;
    char* text = nullptr;
};
