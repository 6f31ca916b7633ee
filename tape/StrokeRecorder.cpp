#include "tape/StrokeRecorder.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicDeviceState.h"

#include <algorithm>
#include <cstdlib>

void StrokeRecorder::press(Tape& owner, int16_t x, int16_t y, int16_t brushSize, const KColor& colour)
{
    if (isOpen())
        release(last.x, last.y, false);
    tape = owner;
    size = brushSize;
    stroke = new Stroke();
    stroke->setBrushSize(size);
    stroke->setColour(colour);
    first.set(x, y);
    if (TapePage* page = tape->getSpriteSystem()) {
        KGraphicDevice& device = page->getPageDevice();
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.setForeground(colour);
        int16_t half = int16_t(size / 2);
        KGraphicRectangle dab(int16_t(x - half), int16_t(y - half), size, size);
        device.fillOval(dab);
        page->refresh(dab);
    }
    stroke->addPoint(x, y);
    last.set(x, y);
    cursor.set(int16_t(x - size / 2), int16_t(y - size / 2));
    // Points are taken an eighth of the brush apart, which keeps the line
    // solid without sampling every pixel the mouse crosses.
    minDistance = std::max(1, size / 8);
    axisChosen = false;
    keepX = false;
}

bool StrokeRecorder::constrain(int16_t& x, int16_t& y, bool shift)
{
    if (!shift) {
        axisChosen = false;
        keepX = false;
        return true;
    }
    int32_t dx = std::abs(x - first.x);
    int32_t dy = std::abs(y - first.y);
    if (!axisChosen) {
        if (dx <= kAxisChoiceDistance && dy <= kAxisChoiceDistance)
            return false;
        axisChosen = true;
        keepX = dx <= dy;
    }
    if (keepX)
        x = first.x;
    else
        y = first.y;
    return true;
}

void StrokeRecorder::drawTo(int16_t x, int16_t y)
{
    stroke->addPoint(x, y);
    if (TapePage* page = tape->getSpriteSystem()) {
        KGraphicDevice& device = page->getPageDevice();
        device.setPenMode(KGraphicDeviceState::CopyForeground);
        device.setForeground(stroke->getColour());
        Stroke::drawDabLine(device, last, KGraphicPoint(x, y), size, page);
    }
    last.set(x, y);
}

bool StrokeRecorder::move(int16_t x, int16_t y, bool shift)
{
    if (!isOpen() || !constrain(x, y, shift))
        return false;
    cursor.set(int16_t(x - size / 2), int16_t(y - size / 2));
    if (std::abs(x - last.x) < minDistance && std::abs(y - last.y) < minDistance)
        return false;
    drawTo(x, y);
    return true;
}

StrokePtr StrokeRecorder::release(int16_t x, int16_t y, bool shift)
{
    if (!isOpen())
        return StrokePtr();
    constrain(x, y, shift);
    drawTo(x, y);
    StrokePtr done = stroke;
    stroke.clear();
    tape->addElement(*done);
    tape.clear();
    axisChosen = false;
    keepX = false;
    return done;
}
