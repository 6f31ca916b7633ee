#pragma once

#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KPixelBuffer.h"
#include "kernel/KJsonWriter.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/WipeOut.h"

#include <string>
#include <utility>
#include <vector>

// Helpers shared by the project and tool tests: a small story, a host that
// records what the user would have been shown, and pixel access.
namespace projecttest {

// Records alerts as "title: text" and answers a chosen page size for new
// tapes.
class RecordingHost : public TapeHost {
public:
    void alert(const KString& title, const KString& text) override
    {
        alerts.push_back(std::string(title.c_str()) + ": " + text.c_str());
    }
    KGraphicSize newDocumentPageSize() override { return newPageSize; }
    void beginBusyCursor() override { ++busyDepth; }
    void endBusyCursor() override { --busyDepth; }

    std::vector<std::string> alerts;
    KGraphicSize newPageSize = KGraphicSize(640, 480);
    int32_t busyDepth = 0;
};

// Installs a recording host for a scope.
class HostScope {
public:
    HostScope() { TapeHost::install(&host); }
    ~HostScope() { TapeHost::install(nullptr); }
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

    RecordingHost host;
};

inline KColor rgb(uint32_t value)
{
    return KColor(uint16_t(((value >> 16) & 0xFF) << 8), uint16_t(((value >> 8) & 0xFF) << 8),
                  uint16_t((value & 0xFF) << 8));
}

inline StrokePtr makeStroke(const std::vector<std::pair<int16_t, int16_t>>& points, int16_t size, uint32_t colour)
{
    StrokePtr stroke(new Stroke());
    stroke->setBrushSize(size);
    stroke->setColour(rgb(colour));
    for (auto& [x, y] : points)
        stroke->addPoint(x, y);
    return stroke;
}

inline WipeOutPtr makeWipe(uint32_t colour, int32_t effect = WipeOut::Cut)
{
    WipeOutPtr wipe(new WipeOut());
    wipe->setColour(rgb(colour));
    wipe->setEffect(effect);
    return wipe;
}

// Two pages: red and yellow strokes on black, then a blue page with a green
// stroke and a white one that is switched off. A bookmark on the first
// stroke; the position at the end.
inline void fillStory(Tape& tape)
{
    tape.addElement(*makeStroke({ { 10, 10 }, { 60, 40 }, { 20, 70 } }, 9, 0xFF0000));
    tape.getAt(0)->setBookmark("Opening");
    tape.addElement(*makeStroke({ { 90, 20 } }, 15, 0xFFFF00));
    tape.addElement(*makeWipe(0x0000FF, WipeOut::WipeLeft));
    tape.addElement(*makeStroke({ { 5, 5 }, { 100, 60 } }, 5, 0x00FF00));
    tape.addElement(*makeStroke({ { 30, 50 }, { 31, 51 } }, 7, 0xFFFFFF));
    tape.getAt(4)->deactivate();
    tape.setPositionQuietly(tape.getCount());
}

inline std::string jsonOf(const KThing* thing)
{
    KJsonWriter writer(0);
    writer.object(thing);
    return writer.getText();
}

// Colour bits of every pixel, row by row.
inline std::vector<uint32_t> pixelsOf(KGraphicDevice& device)
{
    std::vector<uint32_t> result;
    KPixelBuffer buffer;
    if (!device.beginPixelAccess(buffer))
        return result;
    for (int32_t y = 0; y < buffer.height; ++y) {
        for (int32_t x = 0; x < buffer.width; ++x)
            result.push_back(*buffer.at(x, y) & KPixelBuffer::kColourBits);
    }
    return result;
}

// The page a copy of the tape shows at `position`, rebuilt from nothing on
// a page of the tape's size.
inline std::vector<uint32_t> pageAt(const Tape& tape, int32_t position)
{
    TapePtr copy(new Tape(tape));
    ImageTapePagePtr page(new ImageTapePage(tape.getPageSize()));
    copy->setSpriteSystem(*page);
    copy->getPageCache().setEnabled(false);
    copy->setPositionQuietly(position);
    copy->rebuildPage();
    std::vector<uint32_t> result = pixelsOf(page->getPageDevice());
    copy->clearSpriteSystem();
    return result;
}

} // namespace projecttest
