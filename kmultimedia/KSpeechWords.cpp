#include "kmultimedia/KSpeechWords.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

bool isBlank(unsigned char c) { return c <= ' ' || c == 0xA0; }

// Marks that end a word without belonging to it.
bool isClosingMark(unsigned char c) { return c != 0 && std::strchr(".,;:!?\"')]}\x85\x94\x92\xBB", c) != nullptr; }

} // namespace

KSpeechWordCleaner::KSpeechWordCleaner(const KString& text) { reset(text); }

void KSpeechWordCleaner::reset(const KString& value)
{
    text = value;
    lastStart = -1;
    lastEnd = 0;
}

int32_t KSpeechWordCleaner::wordLengthAt(const KString& text, int32_t start)
{
    auto size = int32_t(text.getLength());
    if (start < 0 || start >= size)
        return 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.c_str());
    int32_t end = start;
    while (end < size && !isBlank(bytes[end]))
        ++end;
    while (end > start && isClosingMark(bytes[end - 1]))
        --end;
    return end - start;
}

bool KSpeechWordCleaner::take(int32_t enginePosition, int32_t audioMs, KSpeechWord& word)
{
    int32_t start = enginePosition - 1;
    if (start < 0 || start <= lastStart || start < lastEnd)
        return false;
    int32_t length = wordLengthAt(text, start);
    if (length <= 0)
        return false;
    lastStart = start;
    // The rest of a word or a number is merged into it, blanks and all
    // marks included.
    lastEnd = start + length;
    while (lastEnd < int32_t(text.getLength()) && !isBlank(text.c_str()[lastEnd]))
        ++lastEnd;
    word.start = start;
    word.length = length;
    word.audioMs = audioMs;
    return true;
}

int32_t kSpeechWordsPerMinute(double speed)
{
    double v = std::clamp(speed, 0.0, 1.0) * 100.0;
    double words = v <= 50.0 ? 80.0 + v * 95.0 / 50.0 : 175.0 + (v - 50.0) * 275.0 / 50.0;
    return int32_t(std::lround(words));
}
