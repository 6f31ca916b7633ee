#pragma once

#include "windowing/KNativeTypes.h"

#include <cstdint>
#include <string>
#include <vector>

// What a styled text widget does, for the fake native layer: characters,
// each with its style, a selection with the caret at its end, and the
// style the next typed characters take. Typed text takes the style that
// was chosen at the caret with nothing selected, else the style of the
// character before the caret (at the start, of the first character; in
// empty text, the style the text was loaded with or last had).
class KFakeStyledText {
public:
    void load(const KNativeStyledText& text);
    KNativeStyledText read() const;

    void select(int32_t start, int32_t length);
    int32_t selectionStart() const { return start; }
    int32_t selectionLength() const { return length; }

    void change(const KNativeStyleChange& change);
    // A key as sendControlKey gives it.
    void key(int32_t key);
    // Characters typed one after the other; CR or LF breaks the line.
    void type(const std::string& text);

    const std::string& characters() const { return chars; }
    const KNativeTextStyle& styleOf(int32_t index) const { return styles[size_t(index)]; }

private:
    KNativeTextStyle typingStyle() const;
    void insert(char c);
    void erase(int32_t from, int32_t count);
    void moveCaret(int32_t position);
    int32_t caret() const { return start + length; }

    std::string chars;
    std::vector<KNativeTextStyle> styles;
    KNativeTextStyle emptyStyle;
    bool hasPending = false;
    KNativeTextStyle pending;
    int32_t alignment = 0;
    int32_t start = 0;
    int32_t length = 0;
};
