#pragma once

#include "kernel/KString.h"

#include <cstdint>

// A word of a spoken text: its first character (0-based, in the text as
// the program holds it), its length, and when it is heard, in milliseconds
// from the start of the audio.
struct KSpeechWord {
    int32_t start = -1;
    int32_t length = -1;
    int32_t audioMs = 0;
};

// Turns the engine's word reports into the words a reader sees lit. The
// engine's position is 1-based; its lengths are not used, since numbers and
// hyphenated words come as several reports: the length is read from the
// text, and a report that starts inside the word before it, goes
// backwards or has no word under it is dropped.
class KSpeechWordCleaner {
public:
    explicit KSpeechWordCleaner(const KString& text = KString());

    void reset(const KString& text);
    // True when the report makes a word of its own, given in `word`.
    bool take(int32_t enginePosition, int32_t audioMs, KSpeechWord& word);

    // The length of the word at `start`: up to the next blank, without the
    // punctuation that ends it; a hyphen or a digit group's mark inside the
    // word stays. 0 when there is no word there.
    static int32_t wordLengthAt(const KString& text, int32_t start);

private:
    KString text;
    int32_t lastStart = -1;
    int32_t lastEnd = 0;
};

// The engine's words a minute for a speed of 0 to 1: 0.5 is the engine's
// normal 175, 0 is 80 and 1 is 450.
int32_t kSpeechWordsPerMinute(double speed);
