#pragma once

#include "graphics/KGraphicRectangle.h"
#include "tape/TapeObject.h"

// An element that occupies a rectangle on the page.
// The inspector's forms of a rectangle, [x, y, width, height], and of a
// colour, [red, green, blue, transparency].
void tapeDescribeRectangle(KJsonWriter& out, const char* name, const KGraphicRectangle& r);
void tapeDescribeColour(KJsonWriter& out, const char* name, const KColor& colour);

class TapeGraphicObject : public TapeObject {
    K_DECLARE_CLASS(TapeGraphicObject)
public:
    TapeGraphicObject();
    TapeGraphicObject(const TapeGraphicObject& other);
    ~TapeGraphicObject() override;

    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Draws the element into the fixed rectangle (0, 0, 640, 480) of the
    // page, whatever the project's page size, and refreshes it.
    void drawOnPage() override;
    KGraphicRectangle getBounds() const override;

    void setBounds(const KGraphicRectangle& value);
    // Whether the point falls on the element; by its bounds here.
    virtual bool hitTest(const KGraphicPoint& p) const;

protected:
    // The mark around the current element: a band this wide outside its
    // bounds.
    static constexpr int16_t kHighlightWidth = 2;

    void copyFrom(const TapeGraphicObject& other);

    // The rectangle moved as `from` moves onto `to`: where the element lands
    // when the page's `from` is drawn at `to`.
    static KGraphicRectangle movedLike(const KGraphicRectangle& rectangle, const KGraphicRectangle& from,
                                       const KGraphicRectangle& to);
    // What stands for a picture that cannot be shown.
    static void fillBlack(KGraphicDevice& device, const KGraphicRectangle& area);

    // Stores the rectangle, whatever getBounds computes, without counting
    // as a change of what the element draws.
    void keepBounds(const KGraphicRectangle& value) { bounds = value; }

private:
    KGraphicRectangle bounds;
};
