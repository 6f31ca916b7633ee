#pragma once

#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicsForward.h"
#include "graphics/KWideRectangle.h"
#include "kernel/KThingPtr.h"

#include <vector>

// One line of styled text laid out on one line, as wide as it needs, for
// labels and list entries. Drawing and marking are those of a block object
// holding the line alone; positions are those of the line.
class KTextLineObject : public KGraphicObject {
    K_DECLARE_CLASS(KTextLineObject)
public:
    KTextLineObject();
    // Takes a copy of the line.
    explicit KTextLineObject(const KTextLine& line);
    KTextLineObject(const KTextLineObject&) = delete;
    KTextLineObject& operator=(const KTextLineObject&) = delete;
    ~KTextLineObject() override;

    KThing* deepCopy() const override;

    void setTextLine(const KTextLine& line);
    const KTextLine& getTextLine() const;
    void setTextColour(const KColor& colour);
    void clearTextColour();

    void setSelection(int32_t start, int32_t length);
    void clearSelection();
    void setSelectionColour(const KColor& colour);

    // The laid-out size in pixels.
    int32_t getWidth() const;
    int32_t getHeight() const;
    std::vector<KWideRectangle> getCharacterBoxes(int32_t start, int32_t length) const;
    int32_t getCharPositionAt(const KWidePoint& p) const;

    KGraphicRectangle getBounds() const override;
    void drawRegion(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    // Scaled by the ratio of the widths, as a block object is.
    void drawIn(KGraphicDevice& device, const KGraphicRectangle& target) override;
    void drawAt(KGraphicDevice& device, const KGraphicPoint& p) override;

private:
    KTextBlockObjectPtr laidOut;
};
