#include "tests/kmultimedia/MovieTestSupport.h"
#include "tests/support/TestSupport.h"
#include "tests/tape/MediaElementTestSupport.h"

#include "kmultimedia/KMovie.h"
#include "tape/StylusMovie.h"

#include <glib.h>

#include <fstream>
#include <set>

using namespace tapetest;
using namespace mediatest;

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBlack = 0x000000;
// One second of the moving ball at 25 frames a second.
constexpr int kMovieFrames = 25;

std::vector<uint32_t> pixelsIn(KGraphicDevice& device, const KGraphicRectangle& r)
{
    std::vector<uint32_t> out;
    for (int y = r.y; y < r.y + r.height; ++y) {
        for (int x = r.x; x < r.x + r.width; ++x) {
            KColor c = device.getPixel(int16_t(x), int16_t(y));
            out.push_back(uint32_t(c.red >> 8) << 16 | uint32_t(c.green >> 8) << 8 | uint32_t(c.blue >> 8));
        }
    }
    return out;
}

int countNot(const std::vector<uint32_t>& pixels, uint32_t colour)
{
    int count = 0;
    for (uint32_t p : pixels)
        count += p != colour;
    return count;
}

class MovieElementTest : public TapeTest {
protected:
    static void SetUpTestSuite() { moviePath() = makeTestMovie(64, 48, kMovieFrames, movieError()); }
    static void TearDownTestSuite() { removeTestMovie(moviePath()); }
    static std::string& moviePath()
    {
        static std::string path;
        return path;
    }
    static std::string& movieError()
    {
        static std::string error;
        return error;
    }

    void SetUp() override
    {
        TapeTest::SetUp();
        TapeHost::install(&media);
        ASSERT_FALSE(moviePath().empty()) << movieError();
    }
    void TearDown() override
    {
        TapeTest::TearDown();
        TapeHost::install(nullptr);
    }

    StylusMoviePtr makeMovie(const std::filesystem::path& file) { return makeMovie(file, area); }
    StylusMoviePtr makeMovie(const std::filesystem::path& file, const KGraphicRectangle& bounds)
    {
        StylusMoviePtr movie(new StylusMovie());
        movie->setFile(referenceTo(file));
        movie->setBounds(bounds);
        return movie;
    }
    // Ticks the tape in real time, as the play timer would, until the
    // condition holds; false when the time limit passed first.
    template<class Condition>
    bool tickUntil(Condition done, int limitMs = 20000)
    {
        gint64 end = g_get_monotonic_time() + gint64(limitMs) * 1000;
        while (!done()) {
            if (g_get_monotonic_time() > end)
                return false;
            tick();
            g_usleep(5000);
        }
        return true;
    }
    // Ticks for a while of real time; false when the condition failed on
    // the way.
    template<class Condition>
    bool tickFor(int milliseconds, Condition holds)
    {
        gint64 end = g_get_monotonic_time() + gint64(milliseconds) * 1000;
        while (g_get_monotonic_time() < end) {
            tick();
            if (!holds())
                return false;
            g_usleep(5000);
        }
        return true;
    }

    const KGraphicRectangle area { 20, 10, 64, 48 };
    MediaHost media;
    ScratchFolder scratch { "taleloom-movie-element-test" };
};

} // namespace

TEST_F(MovieElementTest, PlaysToItsEndWhileTheTapeWaitsAndItsFramesReachThePage)
{
    StylusMoviePtr movie = makeMovie(moviePath());
    tape->addElement(*movie);
    auto* after = new ProbeElement(PauseType);
    tape->addElement(*after);

    tape->startPlaying(0);
    tick();
    ASSERT_EQ(tape->getPlayingObject(), movie.get());
    ASSERT_NE(movie->getMovie(), nullptr);
    EXPECT_EQ(media.movieShown, std::vector<bool>({ true }));

    std::set<std::vector<uint32_t>> seen;
    int32_t refreshesBefore = page->getRefreshCount();
    gint64 start = g_get_monotonic_time();
    ASSERT_TRUE(tickUntil([&] {
        seen.insert(pixelsIn(page->getPageDevice(), area));
        EXPECT_EQ(after->starts, 0) << "the tape went on while the movie played";
        return tape->getPlayingObject() != movie.get();
    })) << "the movie never ended";
    double seconds = double(g_get_monotonic_time() - start) / 1e6;
    EXPECT_GT(seconds, 0.6);
    EXPECT_GE(seen.size(), 5u) << "too few frames reached the page";
    EXPECT_GT(page->getRefreshCount() - refreshesBefore, 5);
    EXPECT_TRUE(page->getRefreshed().contains(KGraphicPoint(area.x, area.y)));

    // Ended, the movie is gone and its first frame stands in its place,
    // as drawn on any device.
    EXPECT_EQ(movie->getMovie(), nullptr);
    EXPECT_EQ(media.movieShown, std::vector<bool>({ true, false }));
    KImagePtr expected(new KImage(KGraphicSize(kPageWidth, kPageHeight)));
    movie->drawOn(expected->getDevice(), page->getPageBounds(), page->getPageBounds());
    std::vector<uint32_t> poster = pixelsIn(expected->getDevice(), area);
    EXPECT_EQ(pixelsIn(page->getPageDevice(), area), poster);
    EXPECT_GT(countNot(poster, kBlack), 0);

    ASSERT_TRUE(tickUntil([&] { return tape->getPlayState() == Tape::Stopped; }));
    EXPECT_EQ(after->starts, 1);
}

TEST_F(MovieElementTest, TheFirstFrameIsStretchedIntoTheBoundsOrBlackWithoutAMovie)
{
    StylusMoviePtr movie = makeMovie(moviePath(), { 10, 10, 128, 96 });
    KImagePtr frame;
    ASSERT_TRUE(movie->getFirstFrame(frame));
    EXPECT_EQ(frame->getSize(), KGraphicSize(64, 48));

    KImagePtr target(new KImage(KGraphicSize(200, 150)));
    KGraphicDevice& device = target->getDevice();
    device.fillRectangle(KGraphicRectangle(0, 0, 200, 150), rgb(kWhite));
    movie->drawOn(device, KGraphicRectangle(0, 0, 640, 480), KGraphicRectangle(0, 0, 640, 480));
    std::vector<uint32_t> inside = pixelsIn(device, { 10, 10, 128, 96 });
    // The ball on black fills the rectangle: mostly dark, partly lit.
    int lit = countNot(inside, kBlack);
    EXPECT_GT(lit, 100);
    EXPECT_LT(lit, 128 * 96 / 2);
    EXPECT_EQ(countNot(pixelsIn(device, { 0, 0, 200, 10 }), kWhite), 0);
    EXPECT_EQ(countNot(pixelsIn(device, { 138, 10, 62, 96 }), kWhite), 0);
    // Twice the size of the frame: a lit pixel of the frame covers a 2 by 2
    // block.
    KGraphicDevice& own = frame->getDevice();
    int litInFrame = countNot(pixelsIn(own, frame->getBounds()), kBlack);
    EXPECT_NEAR(lit, 4 * litInFrame, litInFrame);

    // A missing file and a file that is no movie are black rectangles.
    std::filesystem::path broken = scratch / "broken.mp4";
    std::ofstream(broken) << std::string(4000, 'x');
    for (const std::filesystem::path& file : { scratch / "gone.mp4", broken }) {
        SCOPED_TRACE(file.string());
        StylusMoviePtr none = makeMovie(file, { 10, 10, 128, 96 });
        EXPECT_FALSE(none->getFirstFrame(frame));
        device.fillRectangle(KGraphicRectangle(0, 0, 200, 150), rgb(kWhite));
        none->drawOn(device, KGraphicRectangle(0, 0, 640, 480), KGraphicRectangle(0, 0, 640, 480));
        EXPECT_EQ(countNot(pixelsIn(device, { 10, 10, 128, 96 }), kBlack), 0);
        EXPECT_EQ(countNot(pixelsIn(device, { 0, 0, 200, 10 }), kWhite), 0);
        // A file that failed is not opened again for the next drawing.
        gint64 start = g_get_monotonic_time();
        for (int i = 0; i < 20; ++i)
            none->drawOn(device, KGraphicRectangle(0, 0, 640, 480), KGraphicRectangle(0, 0, 640, 480));
        EXPECT_LT(g_get_monotonic_time() - start, 200000);
    }
}

TEST_F(MovieElementTest, APressThatBeganAfterTheStartStopsAMovieThatCanBeStopped)
{
    StylusMoviePtr movie = makeMovie(moviePath());
    movie->setCanBeStopped(true);
    tape->addElement(*movie);
    auto* after = new ProbeElement(PauseType);
    tape->addElement(*after);

    // The button is held from before the start: no stop while it stays down.
    media.buttonDown = true;
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(tape->getPlayingObject(), movie.get());
    EXPECT_FALSE(movie->getButtonWasUp());
    EXPECT_TRUE(tickFor(150, [&] { return tape->getPlayingObject() == movie.get(); }));

    // Released, then pressed again: the movie ends there and the tape goes on.
    media.buttonDown = false;
    tick();
    EXPECT_TRUE(movie->getButtonWasUp());
    ASSERT_EQ(tape->getPlayingObject(), movie.get());
    ASSERT_TRUE(movie->getMovie() && movie->getMovie()->isPlaying());
    media.buttonDown = true;
    tick();
    EXPECT_NE(tape->getPlayingObject(), movie.get());
    EXPECT_EQ(movie->getMovie(), nullptr);
    tick();
    EXPECT_EQ(after->starts, 1);
    tape->stopPlaying();

    // A movie that cannot be stopped ignores presses.
    movie->setCanBeStopped(false);
    media.buttonDown = false;
    tape->startPlaying(0);
    tick();
    ASSERT_EQ(tape->getPlayingObject(), movie.get());
    tick();
    media.buttonDown = true;
    EXPECT_TRUE(tickFor(150, [&] { return tape->getPlayingObject() == movie.get(); }));

    // Stopping the tape stops the movie and leaves its first frame.
    tape->stopPlaying();
    EXPECT_EQ(movie->getMovie(), nullptr);
    EXPECT_EQ(media.movieShown.back(), false);
    EXPECT_GT(countNot(pixelsIn(page->getPageDevice(), area), kBlack), 0);
}

TEST_F(MovieElementTest, AMovieThatCannotPlayPassesAtOnceAsABlackRectangle)
{
    std::filesystem::path broken = scratch / "broken.avi";
    std::ofstream(broken) << std::string(4000, 'x');
    tape->addElement(*makeStroke({ { 80, 60 } }, 400, rgb(kWhite)));
    tape->addElement(*makeMovie(scratch / "gone.mp4", { 0, 0, 40, 30 }));
    tape->addElement(*makeMovie(broken, { 100, 80, 40, 30 }));
    auto* after = new ProbeElement(PauseType);
    tape->addElement(*after);

    tape->startPlaying(0);
    gint64 start = g_get_monotonic_time();
    int32_t ticks = playToEnd(100);
    EXPECT_LT(g_get_monotonic_time() - start, 10 * 1000000);
    EXPECT_EQ(tape->getPlayState(), Tape::Stopped);
    EXPECT_LT(ticks, 20);
    EXPECT_EQ(after->starts, 1);
    EXPECT_EQ(pixel(*page, 0, 0), kBlack);
    EXPECT_EQ(pixel(*page, 139, 109), kBlack);
    EXPECT_EQ(pixel(*page, 60, 60), kWhite);
    EXPECT_TRUE(media.movieShown.empty());
}

TEST_F(MovieElementTest, PersistenceKeepsTheFileTheStopAndTheVolume)
{
    StylusMoviePtr movie = makeMovie(moviePath(), { 5, 6, 7, 8 });
    movie->setCanBeStopped(true);
    movie->setVolume(0.25);
    std::vector<uint8_t> bytes = streamOf(*movie);

    StylusMoviePtr copy(new StylusMovie());
    ASSERT_EQ(readStream(*copy, bytes), 0);
    EXPECT_EQ(copy->getType(), MovieType);
    EXPECT_EQ(copy->getBounds(), KGraphicRectangle(5, 6, 7, 8));
    EXPECT_EQ(copy->getMovieFile().getPath(), movie->getMovieFile().getPath());
    EXPECT_TRUE(copy->getCanBeStopped());
    EXPECT_DOUBLE_EQ(copy->getVolume(), 0.25);
    EXPECT_EQ(streamOf(*copy), bytes);

    // A name leading out of the folder loads empty and is reported.
    KPath outside;
    outside.setNameAndExtension("../../etc/passwd");
    movie->setFile(KFileReference(outside));
    ASSERT_EQ(readStream(*copy, streamOf(*movie)), 0);
    EXPECT_TRUE(copy->getMovieFile().getPath().isEmpty());
    EXPECT_TRUE(copy->getCanBeStopped());
    ASSERT_EQ(media.refused.size(), 1u);
    EXPECT_EQ(media.refused[0], "../../etc/passwd");
}
