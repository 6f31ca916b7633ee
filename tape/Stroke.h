#pragma once

#include "graphics/KColor.h"
#include "graphics/KGraphicPoint.h"
#include "kernel/KBag.h"
#include "kernel/KThingPtr.h"
#include "tape/TapeGraphicObject.h"
#include "windowing/KTimer.h"

// A press, drag and release of the brush: the sampled points, the brush
// size and the colour. Kept as points, not pixels, so that it replays at
// the pace of the hand that drew it, and can be moved, scaled, mirrored and
// recoloured. Its bounds come from the points.
class Stroke : public TapeGraphicObject {
    K_DECLARE_CLASS(Stroke)
public:
    static constexpr int16_t kDefaultBrushSize = 16;
    // Ticks a finished one-point stroke stays on the tape while playing.
    static constexpr int16_t kSinglePointHold = 5;
    // Strokes of up to this many entries (five points) linger when played.
    static constexpr int32_t kShortStrokeEntries = 10;

    Stroke();
    Stroke(const Stroke& other);
    ~Stroke() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void drawOnPage() override;
    void drawOn(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target) override;
    void drawHighlighted(KGraphicDevice& device, const KGraphicRectangle& source,
                         const KGraphicRectangle& target) override;
    void drawSilhouette(KGraphicDevice& device, const KGraphicRectangle& from, const KGraphicRectangle& to) override;
    void mirror(bool horizontal, int16_t centre) override;
    void redrawOver() override;
    void scale(double x, double y) override;
    void scale(double factor) override;
    void scaleBetween(const KGraphicRectangle& oldBounds, const KGraphicRectangle& newBounds) override;
    void moveBy(int16_t x, int16_t y) override;
    KGraphicRectangle getBounds() const override;
    bool hitTest(const KGraphicPoint& p) const override;

    void setBrushSize(int16_t size);
    int16_t getBrushWidth() const { return brushWidth; }
    int16_t getBrushHeight() const { return brushHeight; }
    void setColour(const KColor& value);
    const KColor& getColour() const { return colour; }
    void addPoint(int16_t x, int16_t y);
    int32_t getPointCount() const { return points.getSize() / 2; }
    KGraphicPoint getPoint(int32_t index) const;
    int16_t getHoldTicks() const { return holdTicks; }
    int32_t getPlayIndex() const { return playIndex; }

    // The one way strokes get on a surface, when recording and replaying
    // alike: dabs of `size` along the line, one every eighth of the brush,
    // each refreshed on `refresh` when it is given.
    static void drawDabLine(KGraphicDevice& device, const KGraphicPoint& from, const KGraphicPoint& to, int16_t size,
                            TapePage* refresh);

private:
    static void drawDabs(KGraphicDevice& device, const KGraphicPoint& from, const KGraphicPoint& to, int16_t size,
                         TapePage* refresh, bool withStart);
    void takePoints(const KBag& read);
    void resetPoints();
    int16_t xAt(int32_t entry) const;
    int16_t yAt(int32_t entry) const;
    // The dab of the brush around a point, as the first point is drawn.
    KGraphicRectangle dabAround(int32_t x, int32_t y, int16_t width, int16_t height) const;
    void drawWith(KGraphicDevice& device, const KGraphicRectangle& source, const KGraphicRectangle& target,
                  const KColor& inColour, int16_t width, int16_t height);
    bool stepTimerRanOut() const;
    void restartStepTimer();
    void finishPlaying();
    void drawNextPiece();

    KBag points;
    int16_t brushWidth = kDefaultBrushSize;
    int16_t brushHeight = kDefaultBrushSize;
    KColor colour;
    int32_t playIndex = 0;
    int32_t lastX = 0;
    int32_t lastY = 0;
    KTimerPtr stepTimer;
    int16_t holdTicks = 0;
};
