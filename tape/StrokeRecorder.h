#pragma once

#include "graphics/KColor.h"
#include "graphics/KGraphicPoint.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"

// Records a stroke from the brush's mouse events: the press draws the first
// dab, each move with the button down a line of dabs to the new point
// unless it is too near the last one drawn, and the release puts the stroke
// on the tape at its position. The page shows the stroke while it is being
// drawn, so nothing is redrawn when it enters the tape.
//
// With the shift key held the line keeps to one axis, chosen once the mouse
// is more than a few pixels away from where it was pressed.
class StrokeRecorder {
public:
    // Points nearer than this in both directions to the first one do not
    // choose the axis yet.
    static constexpr int32_t kAxisChoiceDistance = 4;

    StrokeRecorder() = default;
    StrokeRecorder(const StrokeRecorder&) = delete;
    StrokeRecorder& operator=(const StrokeRecorder&) = delete;

    // A stroke still open is ended first, as by a release at its last point.
    void press(Tape& tape, int16_t x, int16_t y, int16_t brushSize, const KColor& colour);
    // True when the point was taken and drawn.
    bool move(int16_t x, int16_t y, bool shift);
    // The last point is always taken. Returns the stroke now on the tape,
    // or an empty reference when none was open.
    StrokePtr release(int16_t x, int16_t y, bool shift);

    bool isOpen() const { return stroke.get() != nullptr; }
    Stroke* getStroke() const { return stroke.get(); }
    // Where the brush cursor goes: the corner of a dab at the mouse.
    const KGraphicPoint& getCursorPosition() const { return cursor; }

private:
    // False when the point is to be ignored while the axis is not chosen.
    bool constrain(int16_t& x, int16_t& y, bool shift);
    void drawTo(int16_t x, int16_t y);

    TapePtr tape;
    StrokePtr stroke;
    int16_t size = 1;
    KGraphicPoint first;
    KGraphicPoint last;
    KGraphicPoint cursor;
    int32_t minDistance = 1;
    bool axisChosen = false;
    bool keepX = false;
};
