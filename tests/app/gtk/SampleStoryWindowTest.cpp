#include "app/StylusApplication.h"
#include "app/StylusWindow.h"
#include "app/actors/Actor.h"
#include "graphics/KColor.h"
#include "kernel/KErrorHandler.h"
#include "tape/Tape.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <string>

namespace {

uint32_t rgbAt(KGraphicDevice& device, int x, int y)
{
    KColor c = device.getPixel(int16_t(x), int16_t(y));
    return uint32_t(c.getRed() >> 8) << 16 | uint32_t(c.getGreen() >> 8) << 8 | uint32_t(c.getBlue() >> 8);
}

// The colours the sample story paints with.
constexpr uint32_t kNightSky = 0x141E50;
constexpr uint32_t kSkin = 0xFAD2A0;
constexpr uint32_t kPaper = 0xFAECC8;

// A faded page may differ from its colour by a step of rounding.
bool isNear(uint32_t a, uint32_t b)
{
    for (int shift = 0; shift <= 16; shift += 8) {
        int difference = int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF);
        if (difference < -2 || difference > 2)
            return false;
    }
    return true;
}

// The program started on the bundled story: the page at the story's end,
// then the walker after his walk, then the close button.
class StoryApp : public StylusApplication {
public:
    void doInit() override
    {
        StylusApplication::doInit();
        g_timeout_add(300, &lookAtTheEnd, this);
    }

    static gboolean lookAtTheEnd(gpointer data)
    {
        auto* app = static_cast<StoryApp*>(data);
        StylusWindow& window = *StylusWindow::current();
        app->page = window.getPageRectangle();
        app->endColour = rgbAt(window, app->page.x + 300, app->page.y + 300);
        if (Tape* tape = window.getTape()) {
            app->position = tape->getPosition();
            app->count = tape->getCount();
            // Just after the walk: the first page with the walker on it.
            tape->goToPosition(9);
        }
        g_timeout_add(300, &lookAtTheWalker, app);
        return G_SOURCE_REMOVE;
    }

    static gboolean lookAtTheWalker(gpointer data)
    {
        auto* app = static_cast<StoryApp*>(data);
        StylusWindow& window = *StylusWindow::current();
        if (Tape* tape = window.getTape()) {
            if (auto* walker = dynamic_cast<Actor*>(tape->getActor(KString("Walker")))) {
                app->walkerBounds = walker->getBounds();
                app->walkerVisible = walker->isVisible();
            }
        }
        KGraphicRectangle box = app->walkerBounds;
        for (int y = box.y; y < box.y + box.height; ++y) {
            for (int x = box.x; x < box.x + box.width; ++x) {
                uint32_t colour = rgbAt(window, app->page.x + x, app->page.y + y);
                app->skinSeen = app->skinSeen || colour == kSkin;
                app->skySeen = app->skySeen || colour == kNightSky;
            }
        }
        // Walking the story moved its saved position; closing without the
        // save question is what this test wants.
        if (Tape* tape = window.getTape())
            tape->clearModified();
        gtk_window_close(
            GTK_WINDOW(static_cast<KGtkNativeLayer&>(KNativeLayer::get()).gtkWindowOf(window.getNativeWindow())));
        return G_SOURCE_REMOVE;
    }

    KGraphicRectangle page;
    KGraphicRectangle walkerBounds;
    uint32_t endColour = 0;
    int32_t position = -1;
    int32_t count = -2;
    bool walkerVisible = false;
    bool skinSeen = false;
    bool skySeen = false;
};

bool gGuardFired = false;

gboolean failAndStop(gpointer)
{
    gGuardFired = true;
    ADD_FAILURE() << "the main window was not closed in time";
    if (KApplication* application = KApplication::current())
        application->clearAppFlags(KApplication::Running);
    return G_SOURCE_REMOVE;
}

TEST(SampleStoryWindowTest, OpensTheStoryNamedOnTheCommandLineWithItsActor)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    std::string story = std::string(source) + "/data/samples/Sample/Sample.TPD";
    guint guard = g_timeout_add(15000, &failAndStop, nullptr);
    {
        KPtr<StoryApp> app(new StoryApp());
        const char* arguments[] = { "taleloom", story.c_str() };
        app->run("StylusWindow", 2, arguments);

        // The story opens where it was saved, at its end: the page read
        // aloud, on its paper.
        EXPECT_EQ(app->count, 26);
        EXPECT_EQ(app->position, app->count);
        EXPECT_TRUE(isNear(app->endColour, kPaper)) << std::hex << app->endColour;
        // Walking back to the walk brings the walker from the story's
        // Actors folder onto the scene, at the path's end, see-through
        // around his strokes.
        EXPECT_TRUE(app->walkerVisible);
        EXPECT_GE(app->walkerBounds.x, 500);
        EXPECT_TRUE(app->skinSeen);
        EXPECT_TRUE(app->skySeen);
        EXPECT_EQ(app->getState(), KApplication::Exited);
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
