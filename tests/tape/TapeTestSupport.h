#pragma once

#include "graphics/KColor.h"
#include "kernel/KFile.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/WipeOut.h"
#include "windowing/testing/KFakeNativeLayer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tapetest {

// Remembers what the tape asked of the program. Its stop action stops the
// tape without redrawing, so a test sees the page that playing left.
class RecordingHost : public TapeHost {
public:
    void redrawPage(Tape& tape) override;
    void stopAction(Tape& tape) override;
    void selectTool(int32_t entry) override { tools.push_back(entry); }
    void hideHighlight(bool restore) override { hides.push_back(restore); }
    void showPauseMarks(bool shown) override { pauseMarks.push_back(shown); }
    void beep() override { ++beeps; }
    void alert(const KString& title, const KString& text) override;
    bool chooseColour(KColor& colour) override;
    void openElementDialog(Tape&, TapeObject& element) override { dialogs.push_back(element.getType()); }
    void refreshBookmarks() override { ++bookmarkRefreshes; }
    void pauseAllMedia() override { ++mediaPauses; }
    void stopAllMedia() override { ++mediaStops; }
    int32_t screenHeight() override { return screen; }

    int32_t redraws = 0;
    int32_t stopActions = 0;
    int32_t beeps = 0;
    int32_t bookmarkRefreshes = 0;
    int32_t mediaPauses = 0;
    int32_t mediaStops = 0;
    int32_t screen = 1024;
    std::vector<int32_t> tools;
    std::vector<bool> hides;
    std::vector<bool> pauseMarks;
    std::vector<std::string> alerts;
    std::vector<int32_t> dialogs;
    bool colourChosen = false;
    KColor chosenColour;
};

// An element of any type with a scripted play: it holds the tape for a
// number of steps (0: done as soon as it starts) and counts the calls.
class ProbeElement : public TapeObject {
public:
    explicit ProbeElement(int32_t type, int32_t holdSteps = 0);
    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    void drawOnPage() override { ++draws; }
    bool speaks() const override { return speaking; }

    int32_t holdSteps;
    int32_t starts = 0;
    int32_t steps = 0;
    int32_t stops = 0;
    int32_t draws = 0;
    int32_t stepsLeft = 0;
    bool speaking = false;
};

// A fresh fake layer and clock, a recording host, and an empty story tape
// on a small page.
class TapeTest : public ::testing::Test {
protected:
    static constexpr int16_t kPageWidth = 160;
    static constexpr int16_t kPageHeight = 120;

    void SetUp() override;
    void TearDown() override;

    // A tape on its own page of the test's size.
    TapePtr makeTape(ImageTapePagePtr* pageOut = nullptr);
    // One tick of the play timer, as the timer manager would give it: the
    // clock moves on by the interval.
    void tick();
    // Ticks until the tape stops or `limit` ticks have passed; the count.
    int32_t playToEnd(int32_t limit = 100000);

    KFakeNativeLayer layer;
    RecordingHost host;
    TapePtr tape;
    ImageTapePagePtr page;
};

StrokePtr makeStroke(const std::vector<std::pair<int16_t, int16_t>>& points, int16_t size, const KColor& colour);
// A stroke of `count` points along a line from (x, y) by (dx, dy) each.
StrokePtr makeLine(int16_t x, int16_t y, int16_t dx, int16_t dy, int32_t count, int16_t size, const KColor& colour);
WipeOutPtr makeWipe(const KColor& colour, int32_t effect = WipeOut::Cut, bool removesActors = true);
KColor rgb(uint32_t value);

std::vector<uint32_t> pixels(TapePage& page);
uint32_t pixel(TapePage& page, int32_t x, int32_t y);
int64_t countColour(TapePage& page, uint32_t value);

// The page of a copy of the tape at the position, rebuilt from scratch on
// a page of its own.
std::vector<uint32_t> referencePage(const Tape& tape, int32_t position);

// The class stream of an object, and reading one back.
std::vector<uint8_t> streamOf(KThing& object);
// Reads into `object`; the file's error afterwards.
int32_t readStream(KThing& object, const std::vector<uint8_t>& bytes);

} // namespace tapetest
