#pragma once

#include "graphics/KGraphicsForward.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class StylusText;

// The fonts a book's texts use, each face once, as the files the page was
// drawn with, so that a reader sets the words in the same letters.
class EpubFonts {
public:
    struct Face {
        std::string family; // the CSS family
        std::string file; // on this computer
        std::string name; // in the book, under "fonts/"
        bool bold = false;
        bool italic = false;
    };

    // The CSS family for the font's name, its face noted for the book.
    std::string familyFor(const std::string& fontName, int32_t face);
    const std::vector<Face>& getFaces() const { return faces; }
    // @font-face rules for every face, their sources under `prefix`.
    std::string css(const std::string& prefix) const;

private:
    std::vector<Face> faces;
};

// One text element of a page as HTML in the page's pixels: a block at the
// text's bounds with its background, each line of the page's layout placed
// where the page draws it, each word a <span id> ("w" index "-" start) in
// the letters, size and colours of its characters. The ranges in `words`
// are the words as the play lit them; the rest of the text is cut at
// spaces.
std::string epubTextHtml(const StylusText& text, int32_t index, const std::vector<std::pair<int32_t, int32_t>>& words,
                         EpubFonts& fonts);
// The id of a word's span.
std::string epubWordId(int32_t index, int32_t wordStart);
// The rule that lights the words of the text in its mark colour.
std::string epubMarkCss(const StylusText& text, int32_t index, const std::string& activeClass);
