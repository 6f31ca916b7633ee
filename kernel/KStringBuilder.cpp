#include "kernel/KStringBuilder.h"

#include <cstdio>

KStringBuilder::KStringBuilder(int32_t capacity)
{
    if (capacity > 0)
        buffer.reserve(size_t(capacity));
}

KStringBuilder& KStringBuilder::append(const KString& text)
{
    if (text.getCharSet() == KString::kHostCharSet || text.isEmpty())
        return append(text.getText(), text.getLength());
    KString converted(text);
    converted.convertToHostCharSet();
    return append(converted.getText(), converted.getLength());
}

KStringBuilder& KStringBuilder::appendLong(int32_t value)
{
    char digits[16];
    int size = std::snprintf(digits, sizeof digits, "%ld", long(value));
    return append(digits, size);
}

KString KStringBuilder::toString() const
{
    KString result;
    result.setText(buffer.data(), int32_t(buffer.size()));
    return result;
}
