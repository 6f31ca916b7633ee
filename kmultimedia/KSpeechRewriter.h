#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"

#include <cstdint>
#include <vector>

// What a text becomes for the speech engine: the spoken text, and for each
// of its characters the index of the character of the given text it stands
// for.
struct KSpeechRewrite {
    KString spoken;
    std::vector<int32_t> positionMap;
};

// Rewrites a text through the speech exceptions: each word (the characters
// between blanks, tabs and line ends) is looked up, without a closing
// punctuation mark, and the engine gets the exception's spoken form in its
// place, the mark after it and one space. A word with two periods, as in
// "e.g.", is looked up whole. The map takes each stretch of spoken text
// linearly onto the stretch of given text it replaces, so a word spoken
// longer maps several spoken positions onto each of its characters.
class KSpeechRewriter {
public:
    static constexpr const char* kPunctuation = ".,:;!?";

    // Without a handler no word is replaced, and the text is still spaced
    // and mapped the same way.
    explicit KSpeechRewriter(const KSpeechExceptionHandler* handler);

    void rewrite(const KString& given, KSpeechRewrite& out) const;
    KSpeechRewrite rewrite(const KString& given) const;

    // A word the engine reports in the spoken text, as a range of the given
    // text: its start is taken as 0 below 1 and its end cut to the map's.
    // False when it covers nothing.
    static bool mapWord(const std::vector<int32_t>& positionMap, int32_t wordStart, int32_t wordLength, int32_t& start,
                        int32_t& length);

    static bool isSeparator(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

private:
    const KSpeechExceptionHandler* handler;
};
