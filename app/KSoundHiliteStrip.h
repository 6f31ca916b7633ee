#pragma once

#include "graphics/KGraphicsForward.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KControl.h"

#include <cstdint>

// The strip of the sound highlight editor on which the markers stand: a
// band 100 pixels high and 80 pixels wide for each marker (590 at least),
// of which the control shows the part that its scroll offset names. A
// time lies at width / duration * time from the strip's left.
//
// Only the part in view is ever drawn, so a strip far wider than any
// drawing surface costs no more than a short one.
//
// A press selects the marker under it (Shift or Control add it to the
// selection; without them the others are cleared); a marker that is then
// the only one selected follows the mouse, never closer than 1 ms to its
// neighbours, within the sound.
class KSoundHiliteStrip : public KControl {
    K_DECLARE_CLASS(KSoundHiliteStrip)
public:
    static constexpr int32_t kHeight = 100;
    static constexpr int32_t kMinimumWidth = 590;
    static constexpr int32_t kMarkerWidth = 80;
    static constexpr const char* kFontName = "Geneva";
    static constexpr double kFontSize = 9.0;

    KSoundHiliteStrip();
    KSoundHiliteStrip(int32_t id, const KWideRectangle& bounds);
    ~KSoundHiliteStrip() override;

    void setMedia(KSoundHiliteMedia* media);
    KSoundHiliteMedia* getMedia() const;
    void setDuration(int32_t milliseconds);
    int32_t getDuration() const { return duration; }

    // The whole strip's width for the markers.
    static int32_t widthFor(int32_t markerCount);
    int32_t getStripWidth() const;
    // The first strip pixel in view, kept within the strip.
    void setOffset(int32_t pixels);
    int32_t getOffset() const { return offset; }
    int32_t getMaximumOffset() const;
    // Brings the marker into view when it is not.
    void reveal(int32_t markerIndex);

    // Strip pixels and times.
    int32_t xOfTime(int32_t time) const;
    int32_t timeOfX(int32_t x) const;
    // The first marker whose hit band (x - 1 to x + 1) holds the strip
    // pixel; -1 for none.
    int32_t markerAt(int32_t stripX) const;

    // A press at a pixel of the view; `adding` keeps the other selections.
    // True when a marker is being dragged.
    bool pressAt(int32_t viewX, bool adding);
    // The dragged marker follows the pixel of the view.
    void dragTo(int32_t viewX);
    void release();
    int32_t getDragged() const { return dragged; }
    void clearSelection();
    void selectOnly(int32_t markerIndex);

    // Draws the part in view with its top left corner at (left, top).
    void render(KGraphicDevice& device, int32_t left, int32_t top);

    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;

protected:
    void paintOn(KWindow& target) override;

private:
    int32_t viewWidth() const;
    int32_t viewXOf(const KMouseEvent& event) const;
    void drawMarker(KGraphicDevice& device, KFont& font, KSoundHiliteMarker& marker, int32_t x, int32_t top,
                    int32_t right);

    KSoundHiliteMediaPtr media;
    int32_t duration = 0;
    int32_t offset = 0;
    int32_t dragged = -1;
    // The strip pixel pressed: the marker moves only once the mouse leaves
    // it, so a click does not shift it by the rounding of a pixel.
    int32_t pressedX = 0;
};
