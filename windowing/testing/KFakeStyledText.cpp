#include "windowing/testing/KFakeStyledText.h"

#include <algorithm>

namespace {

// KKeyEvent's codes.
constexpr int32_t kLeft = 273;
constexpr int32_t kRight = 274;
constexpr int32_t kHome = 275;
constexpr int32_t kEnd = 276;
constexpr int32_t kDelete = 280;
constexpr int32_t kBackspace = 281;
constexpr int32_t kReturn = 283;

void applyTo(KNativeTextStyle& style, const KNativeStyleChange& change)
{
    if (change.setFamily)
        style.family = change.family;
    if (change.setSize)
        style.size = change.size;
    style.face = (style.face & ~change.faceMask) | (change.face & change.faceMask);
    if (change.setColour)
        style.colour = change.colour;
}

} // namespace

void KFakeStyledText::load(const KNativeStyledText& text)
{
    chars = text.text;
    styles.clear();
    for (const KNativeStyledRun& run : text.runs)
        styles.insert(styles.end(), size_t(std::max(run.length, 0)), run.style);
    KNativeTextStyle last = text.runs.empty() ? KNativeTextStyle() : text.runs.back().style;
    styles.resize(chars.size(), last);
    emptyStyle = text.runs.empty() ? KNativeTextStyle() : text.runs.front().style;
    alignment = text.alignment;
    hasPending = false;
    start = 0;
    length = 0;
}

KNativeStyledText KFakeStyledText::read() const
{
    KNativeStyledText text;
    text.text = chars;
    text.alignment = alignment;
    for (const KNativeTextStyle& style : styles) {
        if (!text.runs.empty() && text.runs.back().style == style)
            ++text.runs.back().length;
        else
            text.runs.push_back({ 1, style });
    }
    if (text.runs.empty())
        text.runs.push_back({ 0, hasPending ? pending : emptyStyle });
    return text;
}

void KFakeStyledText::select(int32_t from, int32_t count)
{
    int32_t total = int32_t(chars.size());
    start = std::clamp(from, 0, total);
    length = std::clamp(count, 0, total - start);
    hasPending = false;
}

void KFakeStyledText::moveCaret(int32_t position) { select(position, 0); }

void KFakeStyledText::change(const KNativeStyleChange& wanted)
{
    if (wanted.setAlignment)
        alignment = wanted.alignment;
    if (length == 0) {
        KNativeTextStyle next = typingStyle();
        applyTo(next, wanted);
        pending = next;
        hasPending = true;
        return;
    }
    for (int32_t i = start; i < start + length; ++i)
        applyTo(styles[size_t(i)], wanted);
}

KNativeTextStyle KFakeStyledText::typingStyle() const
{
    if (hasPending)
        return pending;
    if (start > 0)
        return styles[size_t(start - 1)];
    return styles.empty() ? emptyStyle : styles.front();
}

void KFakeStyledText::erase(int32_t from, int32_t count)
{
    if (count <= 0)
        return;
    if (count == int32_t(chars.size()))
        emptyStyle = styles.front();
    chars.erase(size_t(from), size_t(count));
    styles.erase(styles.begin() + from, styles.begin() + from + count);
    moveCaret(from);
}

void KFakeStyledText::insert(char c)
{
    KNativeTextStyle style = typingStyle();
    erase(start, length);
    chars.insert(chars.begin() + start, c);
    styles.insert(styles.begin() + start, style);
    moveCaret(start + 1);
}

void KFakeStyledText::key(int32_t code)
{
    int32_t total = int32_t(chars.size());
    switch (code) {
    case kReturn:
        insert('\r');
        break;
    case kBackspace:
        if (length > 0)
            erase(start, length);
        else if (start > 0)
            erase(start - 1, 1);
        break;
    case kDelete:
        if (length > 0)
            erase(start, length);
        else if (start < total)
            erase(start, 1);
        break;
    case kLeft:
        moveCaret(length > 0 ? start : std::max(start - 1, 0));
        break;
    case kRight:
        moveCaret(length > 0 ? caret() : std::min(start + 1, total));
        break;
    case kHome:
        moveCaret(0);
        break;
    case kEnd:
        moveCaret(total);
        break;
    default:
        if (code >= 32 && code <= 255)
            insert(char(code));
        break;
    }
}

void KFakeStyledText::type(const std::string& text)
{
    for (char c : text)
        key(c == '\r' || c == '\n' ? kReturn : int32_t(static_cast<unsigned char>(c)));
}
