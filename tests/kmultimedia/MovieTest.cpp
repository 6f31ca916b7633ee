#include "graphics/KImage.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMovie.h"
#include "kmultimedia/KMovieSupport.h"
#include "tests/kmultimedia/MediaTestSupport.h"
#include "tests/kmultimedia/MovieTestSupport.h"

#include <glib.h>

#include <fstream>

namespace {

// Pixels of the image inside the rectangle, top row first.
std::vector<uint32_t> pixelsIn(KImage& image, const KGraphicRectangle& r)
{
    std::vector<uint32_t> out;
    KPixelBuffer pixels;
    if (!image.getDevice().beginPixelAccess(pixels))
        return out;
    for (int y = r.y; y < r.y + r.height; ++y) {
        for (int x = r.x; x < r.x + r.width; ++x)
            out.push_back(*pixels.at(x, y) & KPixelBuffer::kColourBits);
    }
    image.getDevice().endPixelAccess(KWideRectangle());
    return out;
}

int countLit(const std::vector<uint32_t>& pixels)
{
    int lit = 0;
    for (uint32_t p : pixels)
        lit += p != 0;
    return lit;
}

KFileReference referenceTo(const std::string& path)
{
    return KFileReference(KPath(KString(path.c_str()), KPath::LinuxPlatform));
}

class MovieTest : public MediaTest {
protected:
    static void SetUpTestSuite() { moviePath() = makeTestMovie(64, 48, 25, movieError()); }
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
        MediaTest::SetUp();
        ASSERT_FALSE(moviePath().empty()) << movieError();
        support = kAdopt(new KMovieSupport());
        manager->setSupport(KMediaManager::MovieSupport, support.get());
        manager->setUp(KMediaManager::MovieSupport);
        page = kAdopt(new KImage(KGraphicSize(200, 150)));
    }
    void TearDown() override
    {
        manager->closeMediaSupport();
        page.clear();
        support.clear();
        MediaTest::TearDown();
    }

    KMoviePtr newMovie(const std::string& path)
    {
        KMoviePtr movie(new KMovie());
        movie->setFile(referenceTo(path));
        movie->setTargetDevice(page->getDevice());
        movie->setRectangle(area);
        return movie;
    }

    // Gives the manager idle passes in real time until the condition holds
    // or the time limit passes; false on the time limit.
    template<class Condition>
    bool runUntil(Condition done, int limitMs = 20000)
    {
        gint64 end = g_get_monotonic_time() + gint64(limitMs) * 1000;
        while (!done()) {
            if (g_get_monotonic_time() > end)
                return false;
            manager->idle();
            g_usleep(2000);
        }
        return true;
    }

    KPtr<KMovieSupport> support;
    KPtr<KImage> page;
    KGraphicRectangle area { 10, 20, 128, 96 };
};

} // namespace

TEST_F(MovieTest, LoadsWithNaturalSizeAndPaintsThePosterFrame)
{
    EXPECT_EQ(support->getEngineFlags(), KMovieSupport::Player);
    KMoviePtr movie = newMovie(moviePath());
    ASSERT_TRUE(movie->load());
    EXPECT_EQ(movie->getStatus(), KAbstractMedia::Loaded);
    EXPECT_EQ(movie->getEngineTag(), 2);
    EXPECT_EQ(movie->getNaturalSize().width, 64);
    EXPECT_EQ(movie->getNaturalSize().height, 48);
    EXPECT_NEAR(movie->getDuration(), 1.0, 0.1);
    EXPECT_TRUE(manager->hasMedia(*movie));

    EXPECT_EQ(countLit(pixelsIn(*page, area)), 0);
    movie->drawFrame(page->getDevice(), area);
    // The ball on black: some of the rectangle lit, none outside it.
    int lit = countLit(pixelsIn(*page, area));
    EXPECT_GT(lit, 50);
    EXPECT_LT(lit, area.width * area.height / 2);
    EXPECT_EQ(countLit(pixelsIn(*page, KGraphicRectangle(0, 0, 200, 20))), 0);
    EXPECT_EQ(countLit(pixelsIn(*page, KGraphicRectangle(138, 0, 62, 150))), 0);

    movie->unload();
    EXPECT_EQ(movie->getStatus(), KAbstractMedia::NotLoaded);
    EXPECT_FALSE(manager->hasMedia(*movie));
}

TEST_F(MovieTest, PlaysToItsEndWithFramesReachingThePage)
{
    KMoviePtr movie = newMovie(moviePath());
    std::vector<std::vector<uint32_t>> seen;
    movie->setFrameHandler([&](const KGraphicRectangle& changed) {
        EXPECT_EQ(changed.x, area.x);
        seen.push_back(pixelsIn(*page, area));
    });
    movie->play();
    ASSERT_TRUE(movie->isPlaying());
    EXPECT_TRUE(manager->isIdling());
    ASSERT_TRUE(runUntil([&] { return !movie->isPlaying(); })) << "the movie never reached its end";
    EXPECT_EQ(movie->getStatus(), KAbstractMedia::Loaded);
    EXPECT_FALSE(manager->isIdling());
    // Most of the 25 frames were shown, and the picture moved.
    EXPECT_GE(movie->getFramesShown(), 10);
    ASSERT_GE(seen.size(), 2u);
    EXPECT_NE(seen.front(), seen.back());
    EXPECT_GT(countLit(seen.back()), 0);

    // Played again, it starts from the beginning.
    movie->play();
    EXPECT_TRUE(movie->isPlaying());
    EXPECT_FALSE(movie->isDonePlaying());
    ASSERT_TRUE(runUntil([&] { return !movie->isPlaying(); }));
}

TEST_F(MovieTest, StopPauseAndLoopThroughTheInterface)
{
    KMoviePtr movie = newMovie(moviePath());
    movie->play();
    ASSERT_TRUE(runUntil([&] { return movie->getFramesShown() >= 3; }));
    movie->pause();
    EXPECT_TRUE(movie->isPaused());
    movie->resume();
    EXPECT_TRUE(movie->isPlaying());
    movie->stop();
    EXPECT_EQ(movie->getStatus(), KAbstractMedia::Loaded);
    EXPECT_FALSE(manager->isIdling());
    int32_t shown = movie->getFramesShown();
    for (int i = 0; i < 20; ++i)
        manager->idle();
    EXPECT_EQ(movie->getFramesShown(), shown);

    // A looping movie goes round past its end.
    movie->setLooping(true);
    movie->play();
    ASSERT_TRUE(runUntil([&] { return movie->getFramesShown() >= shown + 40; }, 30000));
    EXPECT_TRUE(movie->isPlaying());
    movie->stop();
}

TEST_F(MovieTest, FilesThatCannotBeOpenedLeaveTheRectangleBlack)
{
    gchar* folder = g_dir_make_tmp("taleloom-bad-XXXXXX", nullptr);
    ASSERT_NE(folder, nullptr);
    std::string garbage = std::string(folder) + "/broken.mp4";
    std::ofstream(garbage) << std::string(4000, 'x');
    std::string empty = std::string(folder) + "/empty.mov";
    std::ofstream(empty).flush();

    gint64 start = g_get_monotonic_time();
    for (const std::string& path : { garbage, empty, std::string(folder) + "/missing.avi" }) {
        KMoviePtr movie = newMovie(path);
        EXPECT_FALSE(movie->load()) << path;
        movie->play();
        EXPECT_EQ(movie->getStatus(), KAbstractMedia::NotLoaded) << path;
        movie->drawFrame(page->getDevice(), area);
        movie->updatePlayback();
        EXPECT_FALSE(manager->isIdling());
    }
    EXPECT_LT(g_get_monotonic_time() - start, 10 * G_USEC_PER_SEC);
    EXPECT_EQ(countLit(pixelsIn(*page, KGraphicRectangle(0, 0, 200, 150))), 0);
    EXPECT_EQ(manager->mediaCount(), 0);

    // Without a target nothing plays; with no engine nothing loads.
    KMoviePtr noTarget(new KMovie());
    noTarget->setFile(referenceTo(moviePath()));
    noTarget->play();
    EXPECT_FALSE(noTarget->isPlaying());
    support->close();
    KMoviePtr noEngine = newMovie(moviePath());
    EXPECT_FALSE(noEngine->load());

    g_remove(garbage.c_str());
    g_remove(empty.c_str());
    g_rmdir(folder);
    g_free(folder);
}

TEST(MovieFrameTest, FramesAreFittedToTheRectangleAndClipped)
{
    kRegisterMultimediaClasses();
    uint32_t source[2 * 3] = { 0x110000, 0x220000, 0x330000, 0x000011, 0x000022, 0x000033 };
    KMovieFrame frame;
    frame.pixels = source;
    frame.width = 2;
    frame.stride = 3;
    frame.height = 2;
    KPtr<KImage> page(new KImage(KGraphicSize(5, 4)));
    // Doubled, hanging over the right and bottom edges.
    ASSERT_TRUE(KMovie::paintFrame(frame, page->getDevice(), KGraphicRectangle(2, 1, 4, 4)));
    std::vector<uint32_t> got = pixelsIn(*page, KGraphicRectangle(0, 0, 5, 4));
    std::vector<uint32_t> want = {
        0, 0, 0,        0,        0, //
        0, 0, 0x110000, 0x110000, 0x220000, //
        0, 0, 0x110000, 0x110000, 0x220000, //
        0, 0, 0x000011, 0x000011, 0x000022, //
    };
    EXPECT_EQ(got, want);
    // Same size, left of the device: the right part shows.
    ASSERT_TRUE(KMovie::paintFrame(frame, page->getDevice(), KGraphicRectangle(-1, 0, 2, 2)));
    EXPECT_EQ(pixelsIn(*page, KGraphicRectangle(0, 0, 2, 2)), (std::vector<uint32_t> { 0x220000, 0, 0x000022, 0 }));
    // Wholly outside, empty, or no frame: nothing.
    EXPECT_FALSE(KMovie::paintFrame(frame, page->getDevice(), KGraphicRectangle(10, 10, 4, 4)));
    EXPECT_FALSE(KMovie::paintFrame(frame, page->getDevice(), KGraphicRectangle(0, 0, 0, 4)));
    EXPECT_FALSE(KMovie::paintFrame(KMovieFrame(), page->getDevice(), KGraphicRectangle(0, 0, 4, 4)));
}
