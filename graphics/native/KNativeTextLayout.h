#pragma once

#include "graphics/KGraphicsForward.h"

#include <cstdint>
#include <string>
#include <vector>

typedef struct _cairo cairo_t;
typedef struct _PangoLayout PangoLayout;
typedef struct _PangoLayoutLine PangoLayoutLine;

// One style over a range of the layout's UTF-8 text: the font (whose
// description carries family, size, weight, slant and stretch), the face
// bits that pango draws as attributes (underline, strikeout), and the
// colour as 8-bit channels. An end of -1 reaches past the text's end, so
// that an empty last line takes the style too.
struct KNativeTextSpan {
    int32_t startByte = 0;
    int32_t endByte = -1;
    const KNativeFont* font = nullptr;
    int32_t face = 0;
    uint32_t colour = 0; // 0x00RRGGBB
};

// A rectangle in the layout's own pixels, unrounded.
struct KNativeTextBox {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

// A pango layout of a whole block of text, on a context of its own that is
// tied to no surface: metrics unhinted and glyph positions unrounded, at
// screen resolution. The layout is therefore the same at any scale it is
// drawn at, and a text wraps alike whatever device shows it.
class KNativeTextLayout {
public:
    enum class Alignment : int32_t { Left = 0, Centre = 1, Right = 2, Justify = 3 };

    KNativeTextLayout();
    ~KNativeTextLayout();
    KNativeTextLayout(const KNativeTextLayout&) = delete;
    KNativeTextLayout& operator=(const KNativeTextLayout&) = delete;

    // The text (paragraphs separated by "\n") and its styles; the first
    // font is also the layout's default.
    void setText(const std::string& utf8, const std::vector<KNativeTextSpan>& spans);
    // Wraps at word boundaries, or inside a word that does not fit, at this
    // width in pixels; 0 or less does not wrap.
    void setWidth(double pixels);
    void setAlignment(Alignment alignment);

    // The logical size of the laid-out text, in pixels.
    double getWidth() const;
    double getHeight() const;
    // The byte index where each visual line starts.
    std::vector<int32_t> getLineStarts() const;
    // The boxes covering the bytes [start, end), at least one per visual
    // line that holds a part, each as high as its line. With `toEdge` a
    // range that goes on past a line reaches the layout's edge, as an
    // editing selection does; without, each line's box covers only its own
    // characters and leaves out the blanks where the line wrapped.
    std::vector<KNativeTextBox> getRangeBoxes(int32_t start, int32_t end, bool toEdge) const;
    // The byte index nearest to a point, and whether the point lies on the
    // trailing half of that character.
    int32_t getIndexAt(double x, double y, bool& trailing) const;
    // The place of the cursor before the byte, as a zero-width box.
    KNativeTextBox getCursorBox(int32_t index) const;

    // Shows the layout on the context at its current point and transform.
    void show(cairo_t* context) const;

private:
    void addLineBoxes(std::vector<KNativeTextBox>& boxes, PangoLayoutLine* line, int32_t start, int32_t end,
                      bool toEdge, double y, double height) const;

    PangoLayout* layout = nullptr;
    std::string text;
};
