#include "tests/support/TestSupport.h"
#include "tests/tape/TapeTestSupport.h"

#include "graphics/KGraphicDevice.h"
#include "windowing/KTimerManager.h"

using namespace tapetest;

namespace {

constexpr uint32_t kRed = 0xFF0000;
constexpr uint32_t kGreen = 0x00FF00;
constexpr uint32_t kBlue = 0x0000FF;
constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlack = 0x000000;

class TapePlayTest : public TapeTest {
protected:
    // The tick at which the marker behind a stroke of `points` points starts.
    int32_t markerTickAfterStroke(int32_t points)
    {
        tape = makeTape(&page);
        tape->addElement(*makeLine(10, 10, 3, 1, points, 4, rgb(kRed)));
        auto* marker = new ProbeElement(PauseType);
        tape->addElement(*marker);
        tape->startPlaying(0);
        for (int32_t tick = 1; tick < 100; ++tick) {
            this->tick();
            if (marker->starts > 0)
                return tick;
        }
        return -1;
    }
};

} // namespace

TEST_F(TapePlayTest, OneElementStartsATickAndInstantOnesCostOne)
{
    std::vector<ProbeElement*> probes;
    for (int32_t i = 0; i < 4; ++i) {
        probes.push_back(new ProbeElement(PauseType));
        tape->addElement(*probes.back());
    }
    probes[2]->deactivate();
    tape->startPlaying(0);
    EXPECT_EQ(tape->getPlayState(), Tape::Playing);
    EXPECT_EQ(playToEnd(), 4);
    EXPECT_EQ(probes[0]->starts, 1);
    EXPECT_EQ(probes[2]->starts, 0);
    EXPECT_EQ(probes[3]->starts, 1);
    EXPECT_EQ(host.stopActions, 1);
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);

    // An element that takes three steps holds the tape for them.
    auto* holding = new ProbeElement(SoundType, 3);
    tape->setPositionQuietly(0);
    tape->addElement(*holding);
    tape->startPlaying(0);
    tick();
    EXPECT_EQ(holding->starts, 1);
    EXPECT_EQ(tape->getPlayingObject(), holding);
    tick();
    tick();
    EXPECT_EQ(tape->getPlayIndex(), 0);
    tick();
    EXPECT_EQ(holding->steps, 3);
    EXPECT_EQ(tape->getPlayIndex(), 1);
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    tape->stopPlaying();

    // Nothing plays past the end or on an empty tape.
    tape->startPlaying(tape->getCount());
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);
    TapePtr empty = makeTape();
    empty->startPlaying(0);
    EXPECT_EQ(empty->getPlayState(), Tape::Stopped);
}

TEST_F(TapePlayTest, ThePlayTimerDrivesTheLoop)
{
    tape->addElement(*makeStroke({ { 10, 10 } }, 4, rgb(kRed)));
    tape->addElement(*new ProbeElement(PauseType));
    tape->setPlayInterval(30);
    KGraphicDevice& device = page->getPageDevice();
    device.fillRectangle(page->getPageBounds(), rgb(kWhite));

    tape->startPlaying(0);
    KTimer& timer = tape->getPlayTimer();
    EXPECT_TRUE(timer.isRunning());
    EXPECT_TRUE(timer.isRepeating());
    EXPECT_EQ(timer.getInterval(), 30);
    EXPECT_EQ(timer.getMode(), KTimer::Bounded);
    EXPECT_EQ(timer.getMaximumLag(), 200);
    EXPECT_EQ(timer.getTarget(), tape.get());
    // Playing from the start begins on a blank page.
    EXPECT_EQ(pixel(*page, 80, 80), kBlack);

    layer.advance(31);
    KTimerManager::get().idle();
    EXPECT_EQ(tape->getPlayingObject(), tape->getAt(0));
    EXPECT_EQ(pixel(*page, 10, 10), kRed);

    // A tick that comes early does not move the stroke on.
    static_cast<Stroke*>(tape->getAt(0))->playStep();
    EXPECT_EQ(static_cast<Stroke*>(tape->getAt(0))->getHoldTicks(), 5);

    tape->stopPlaying();
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(host.mediaStops, 1);
}

TEST_F(TapePlayTest, StrokesReplayAPointATickAndShortOnesLinger)
{
    // Start tick, then one tick a point; up to ten entries linger for
    // 6 - entries / 2 ticks more; the next element starts a tick later.
    EXPECT_EQ(markerTickAfterStroke(1), 7);
    EXPECT_EQ(markerTickAfterStroke(2), 8);
    EXPECT_EQ(markerTickAfterStroke(5), 8);
    EXPECT_EQ(markerTickAfterStroke(6), 8);
    EXPECT_EQ(markerTickAfterStroke(7), 9);
    EXPECT_EQ(markerTickAfterStroke(20), 22);
}

TEST_F(TapePlayTest, PauseDropsThePlayingElementAndResumeStartsItAgain)
{
    auto* holding = new ProbeElement(SoundType, 5);
    tape->addElement(*holding);
    tape->startPlaying(0);
    tick();
    tick();
    EXPECT_EQ(holding->starts, 1);
    EXPECT_EQ(holding->steps, 1);

    tape->pausePlaying();
    EXPECT_EQ(tape->getPlayState(), Tape::Paused);
    EXPECT_EQ(tape->getPlayingObject(), nullptr);
    EXPECT_EQ(holding->stops, 0);
    EXPECT_EQ(host.pauseMarks, std::vector<bool>({ true }));
    EXPECT_EQ(host.mediaPauses, 1);
    tick();
    tick();
    EXPECT_EQ(holding->starts, 1);
    EXPECT_EQ(holding->steps, 1);
    tape->pausePlaying();
    EXPECT_EQ(host.mediaPauses, 1);

    tape->resumePlaying();
    EXPECT_EQ(tape->getPlayState(), Tape::Playing);
    EXPECT_EQ(host.pauseMarks.back(), false);
    tick();
    EXPECT_EQ(holding->starts, 2);
    EXPECT_EQ(tape->getPlayingObject(), holding);

    tape->stopPlaying();
    EXPECT_EQ(holding->stops, 1);
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);

    // A stroke cut by a pause starts over from its first point; what it drew
    // stays on the page.
    tape = makeTape(&page);
    StrokePtr stroke = makeLine(10, 60, 10, 0, 8, 4, rgb(kGreen));
    tape->addElement(*stroke);
    tape->startPlaying(0);
    for (int32_t i = 0; i < 4; ++i)
        tick();
    EXPECT_EQ(stroke->getPlayIndex(), 6);
    EXPECT_EQ(pixel(*page, 30, 60), kGreen);
    tape->pausePlaying();
    tape->resumePlaying();
    tick();
    EXPECT_EQ(stroke->getPlayIndex(), 0);
    EXPECT_EQ(pixel(*page, 30, 60), kGreen);
    EXPECT_EQ(pixel(*page, 70, 60), kBlack);
}

TEST_F(TapePlayTest, LoopingStartsOverOnABlankPage)
{
    for (int32_t i = 0; i < 3; ++i) {
        tape->addElement(*new ProbeElement(PauseType));
        tape->getAt(i)->deactivate();
    }
    tape->setLooping(true);
    tape->startPlaying(0);
    int32_t resets = page->getResetActorsCount();
    for (int32_t i = 0; i < 10; ++i)
        tick();
    EXPECT_EQ(tape->getPlayState(), Tape::Playing);
    EXPECT_EQ(host.stopActions, 0);
    EXPECT_EQ(tape->getPlayIndex(), 1);
    EXPECT_EQ(page->getResetActorsCount(), resets + 3);

    // A frame of an actor loops on white.
    TapePtr frame = makeTape(&page);
    frame->setFrameKind(Tape::ActorFrame);
    frame->addElement(*new ProbeElement(PauseType));
    frame->setLooping(true);
    frame->startPlaying(0);
    EXPECT_EQ(pixel(*page, 5, 5), kWhite);
    frame->stopPlaying();
}

TEST_F(TapePlayTest, APagePlayedEqualsThePageRebuiltThere)
{
    tape->addElement(*makeLine(10, 10, 7, 3, 12, 7, rgb(kRed)));
    tape->addElement(*makeStroke({ { 80, 30 } }, 9, rgb(kBlue)));
    tape->addElement(*makeStroke({ { 120, 90 }, { 120, 90 } }, 1, rgb(kWhite)));
    tape->addElement(*makeWipe(rgb(kBlue), WipeOut::WipeLeft));
    tape->addElement(*makeLine(150, 5, -11, 9, 13, 12, rgb(kGreen)));
    tape->addElement(*makeLine(5, 100, 9, -2, 9, 3, rgb(kWhite)));
    tape->getAt(5)->deactivate();
    tape->addElement(*makeWipe(rgb(kGreen), WipeOut::CheckerBoard));
    tape->addElement(*makeLine(-5, -5, 13, 11, 12, 15, rgb(kRed)));
    tape->addElement(*makeWipe(rgb(kRed), WipeOut::Fade));
    tape->addElement(*makeLine(40, 40, 2, 2, 4, 6, rgb(kBlue)));
    tape->addElement(*makeWipe(rgb(kWhite), WipeOut::VenetianBlinds));
    tape->addElement(*makeWipe(rgb(kBlack), WipeOut::ZoomIn));
    tape->addElement(*makeLine(80, 60, 1, 0, 30, 5, rgb(kGreen)));

    tape->startPlaying(0);
    int32_t checked = 0;
    for (int32_t ticks = 0; tape->getPlayState() == Tape::Playing && ticks < 5000; ++ticks) {
        tick();
        if (tape->getPlayState() == Tape::Playing && !tape->getPlayingObject()) {
            ASSERT_EQ(pixels(*page), referencePage(*tape, tape->getPlayIndex())) << "before " << tape->getPlayIndex();
            ++checked;
        }
    }
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);
    EXPECT_GE(checked, 10);
    EXPECT_EQ(pixels(*page), referencePage(*tape, tape->getCount()));

    // Playing from the middle starts from the page as it stands there.
    tape->startPlaying(7);
    EXPECT_EQ(pixels(*page), referencePage(*tape, 7));
    playToEnd();
    EXPECT_EQ(pixels(*page), referencePage(*tape, tape->getCount()));
}
