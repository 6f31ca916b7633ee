#pragma once

#include "kernel/KString.h"

#include <cstdint>
#include <string>

// Collects text with amortised growth and makes one exactly-sized KString at
// the end. KString reallocates on every append, so long text is built here.
class KStringBuilder {
public:
    KStringBuilder() = default;
    explicit KStringBuilder(int32_t capacity);

    KStringBuilder& append(const KString& text);
    KStringBuilder& append(const char* text)
    {
        if (text)
            buffer.append(text);
        return *this;
    }
    KStringBuilder& append(const char* data, int32_t size)
    {
        if (data && size > 0)
            buffer.append(data, size_t(size));
        return *this;
    }
    KStringBuilder& append(char c)
    {
        buffer.push_back(c);
        return *this;
    }
    KStringBuilder& appendLong(int32_t value);
    KStringBuilder& operator+=(const KString& text) { return append(text); }
    KStringBuilder& operator+=(const char* text) { return append(text); }
    KStringBuilder& operator+=(char c) { return append(c); }

    int32_t getLength() const { return int32_t(buffer.size()); }
    bool isEmpty() const { return buffer.empty(); }
    void clear() { buffer.clear(); }

    // The text so far, in the host set.
    KString toString() const;

private:
    std::string buffer;
};
