#pragma once

#include "graphics/KColor.h"
#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicsForward.h"
#include "graphics/KWidePoint.h"
#include "graphics/KWideRectangle.h"
#include "kernel/KThingPtr.h"

#include <memory>
#include <vector>

// A block of styled text laid out to a width: lines wrap at word
// boundaries, or inside a word too long for the width, and are aligned as
// the block says. The object draws itself into a rectangle and can mark a
// range of characters, painted in the selection colour behind the text.
//
// The layout does not depend on the device or the scale it is drawn at:
// drawing into a rectangle wider or narrower than the laid-out width scales
// the text and keeps its line breaks, so a page and its thumbnail show the
// same lines. A block whose font sizes are scaled by a factor and laid out
// to the width scaled alike also wraps at the same places.
//
// Character positions are those of KTextBlock: one for each character of
// the 8-bit text and one for each line break.
class KTextBlockObject : public KGraphicObject {
    K_DECLARE_CLASS(KTextBlockObject)
public:
    // How a marked range is painted where it runs from one visual line on
    // to the next. Mode 0 marks as an editing selection does: the range
    // reaches the edge of the layout on each line it goes on from. Single-
    // line mode 1 marks each visual line's part of the range over its own
    // characters only, without the blanks where the line wrapped, so that
    // words read aloud are lit one line at a time however the range grows.
    enum SingleLineMode : int32_t { SelectionMarks = 0, SingleLineMarks = 1 };

    KTextBlockObject();
    // Takes a copy of the block.
    explicit KTextBlockObject(const KTextBlock& block);
    KTextBlockObject(const KTextBlockObject&) = delete;
    KTextBlockObject& operator=(const KTextBlockObject&) = delete;
    ~KTextBlockObject() override;

    // The same text and settings, laid out anew when used.
    KThing* deepCopy() const override;

    // --- Text and settings; each change asks for a new layout ----------------

    void setTextBlock(const KTextBlock& block);
    const KTextBlock& getTextBlock() const;
    // The width to wrap at, in pixels; 0 or less does not wrap, and each
    // line of the block stays one line.
    void setWidth(int32_t value);
    int32_t getWidth() const { return width; }
    void setSingleLineMode(int32_t mode);
    int32_t getSingleLineMode() const { return singleLineMode; }
    // All text in one colour, whatever its styles say (a silhouette, the
    // element's own colour); cleared, the styles' colours again.
    void setTextColour(const KColor& colour);
    void clearTextColour();
    bool hasTextColour() const { return useTextColour; }

    // Lays the text out now; queries and drawing do it when needed.
    void layout();
    bool isLaidOut() const { return laidOut; }
    // The laid-out height in pixels.
    int32_t getHeight() const;
    // The positions where visual lines start, the first 0.
    std::vector<int32_t> getLineStarts() const;
    int32_t getLineCount() const { return int32_t(getLineStarts().size()); }

    // --- The mark ------------------------------------------------------------

    // Characters from `start`, `length` of them (clipped to the text).
    void setSelection(int32_t start, int32_t length);
    void clearSelection();
    bool hasSelection() const { return selectionLength > 0; }
    int32_t getSelectionStart() const { return selectionStart; }
    int32_t getSelectionLength() const { return selectionLength; }
    void setSelectionColour(const KColor& colour) { selectionColour = colour; }
    const KColor& getSelectionColour() const { return selectionColour; }

    // --- Geometry ------------------------------------------------------------

    // The rectangles that a mark of the range covers, in the object's own
    // pixels (as drawAt at (0, 0) paints them), in line order.
    std::vector<KWideRectangle> getCharacterBoxes(int32_t start, int32_t length) const;
    // The same as drawIn paints them into `target`, cut to it.
    std::vector<KWideRectangle> getCharacterBoxes(int32_t start, int32_t length, const KGraphicRectangle& target) const;
    // The position nearest to a point of the object's own pixels: before a
    // character hit on its left half, after it on its right half.
    int32_t getCharPositionAt(const KWidePoint& p) const;
    // The cursor before the position, one pixel wide.
    KWideRectangle getCursorBox(int32_t pos) const;

    // --- Drawing -------------------------------------------------------------

    // (0, 0, width, height); without a width, the width of the longest line.
    KGraphicRectangle getBounds() const override;
    // The part `source` of the object stretched over `target`.
    void drawRegion(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    // The whole scaled by the ratio of the target's width to the object's,
    // in both directions, from the target's top left corner, and cut to the
    // target.
    void drawIn(KGraphicDevice& device, const KGraphicRectangle& target) override;
    void drawAt(KGraphicDevice& device, const KGraphicPoint& p) override;

private:
    // Where and how large the object is drawn: the top left corner of its
    // (0, 0) and the scale in each direction.
    struct Placement {
        double x = 0.0;
        double y = 0.0;
        double scaleX = 1.0;
        double scaleY = 1.0;
    };

    void changed();
    void ensureLaidOut() const;
    void buildLayout() const;
    Placement placementIn(const KGraphicRectangle& target) const;
    std::vector<KWideRectangle> boxesAt(int32_t start, int32_t length, const Placement& at) const;
    void paint(KGraphicDevice& device, const Placement& at, const KGraphicRectangle& clip);
    int32_t charAtByte(int32_t byte) const;
    int32_t textLength() const { return int32_t(byteOfChar.size()) - 1; }

    KTextBlockPtr block;
    int32_t width = 0;
    int32_t singleLineMode = SelectionMarks;
    bool useTextColour = false;
    KColor textColour { KColor::Black };
    int32_t selectionStart = 0;
    int32_t selectionLength = 0;
    KColor selectionColour { KColor::Yellow };

    mutable std::unique_ptr<KNativeTextLayout> native;
    // The UTF-8 byte where each character starts, and the text's end.
    mutable std::vector<int32_t> byteOfChar;
    mutable KGraphicRectangle layoutBounds;
    mutable bool laidOut = false;
};
