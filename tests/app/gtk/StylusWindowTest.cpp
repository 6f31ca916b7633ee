#include "app/StylusWindow.h"
#include "app/StylusApplication.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace {

// The GTK layer, noting the areas that the main window asks to have shown
// again. A resize (which a window system without a manager may send at any
// time) shows the whole window again; those are left out.
class RecordingLayer : public KGtkNativeLayer {
public:
    void invalidateWindow(void* handle, const KNativeRect& area) override
    {
        KWindow* window = KApplication::current() ? KApplication::current()->getMainWindow() : nullptr;
        bool whole = window && area.x == 0 && area.y == 0 && area.width == window->getClientBounds().width
                     && area.height == window->getClientBounds().height;
        if (recording && !whole)
            areas.push_back(area);
        KGtkNativeLayer::invalidateWindow(handle, area);
    }
    bool recording = false;
    std::vector<KNativeRect> areas;
};

RecordingLayer& gtkLayer() { return static_cast<RecordingLayer&>(KNativeLayer::get()); }

std::string colourAt(KGraphicDevice& device, int x, int y)
{
    KColor c = device.getPixel(int16_t(x), int16_t(y));
    return std::to_string(c.getRed() >> 8) + "," + std::to_string(c.getGreen() >> 8) + ","
           + std::to_string(c.getBlue() >> 8);
}

const std::string kBlackText = "0,0,0";
const std::string kRedText = "255,0,0";

// The real application, with a script of checks run by GLib timeouts while
// its loop turns: the page, a sprite put on the scene and moved, and the
// close button.
class ScriptedApp : public StylusApplication {
public:
    // The start-up question would wait for a person.
    void scheduleStartupDialog() override { }
    void doInit() override
    {
        StylusApplication::doInit();
        g_timeout_add(400, &showSprite, this);
    }

    StylusWindow& window() { return *StylusWindow::current(); }

    static gboolean showSprite(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        StylusWindow& window = app->window();
        app->page = window.getPageRectangle();
        app->pageCentre = colourAt(window, app->page.x + 320, app->page.y + 240);
        app->pageCorner = colourAt(window, app->page.x + 639, app->page.y + 479);
        app->mode = window.getSpriteSystem().getSpriteSystem().getUpdateMode();

        KPtr<KAlphaImage> frame = kAdopt(new KAlphaImage(KGraphicSize(20, 20)));
        frame->getDevice().fillRectangle(KGraphicRectangle(0, 0, 20, 20), KColor(KColor::Red));
        app->sprite = kAdopt(new KSprite());
        app->sprite->addFrame(*frame);
        app->sprite->setPosition(100.0f, 100.0f);
        window.getSpriteSystem().addSprite(*app->sprite);
        gtkLayer().recording = true;
        g_timeout_add(300, &moveSprite, app);
        return G_SOURCE_REMOVE;
    }

    static gboolean moveSprite(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        StylusWindow& window = app->window();
        app->spriteShown = colourAt(window, app->page.x + 110, app->page.y + 110);
        app->sprite->setPosition(300.0f, 200.0f);
        g_timeout_add(300, &checkMoveAndClose, app);
        return G_SOURCE_REMOVE;
    }

    static gboolean checkMoveAndClose(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        StylusWindow& window = app->window();
        app->oldPlace = colourAt(window, app->page.x + 110, app->page.y + 110);
        app->newPlace = colourAt(window, app->page.x + 310, app->page.y + 210);
        gtkLayer().recording = false;
        // The page seen by the window system too, not only the back buffer.
        GtkWindow* native = GTK_WINDOW(gtkLayer().gtkWindowOf(window.getNativeWindow()));
        app->nativeVisible = gtk_widget_get_visible(GTK_WIDGET(native));
        app->sprite.clear();
        gtk_window_close(native);
        return G_SOURCE_REMOVE;
    }

    KGraphicRectangle page;
    KSpriteSystem::UpdateMode mode = KSpriteSystem::Full;
    std::string pageCentre, pageCorner, spriteShown, oldPlace, newPlace;
    bool nativeVisible = false;
    KSpritePtr sprite;
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

TEST(StylusWindowTest, ShowsThePageAndTheScenesFramesAndItsCloseEndsTheLoop)
{
    RecordingLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    guint guard = g_timeout_add(15000, &failAndStop, nullptr);
    {
        KPtr<ScriptedApp> app(new ScriptedApp());
        const char* arguments[] = { "taleloom" };
        app->run("StylusWindow", 1, arguments);

        // The black page of the default size, at the origin of a window of
        // its size, fed in changed rectangles.
        EXPECT_EQ(app->page, KGraphicRectangle(0, 0, StylusWindow::kDefaultWidth, StylusWindow::kDefaultHeight));
        EXPECT_EQ(app->pageCentre, kBlackText);
        EXPECT_EQ(app->pageCorner, kBlackText);
        EXPECT_EQ(app->mode, KSpriteSystem::Rectangles);
        // A sprite put on the scene shows after a frame; moved, it leaves
        // the page black behind it.
        EXPECT_EQ(app->spriteShown, kRedText);
        EXPECT_EQ(app->oldPlace, kBlackText);
        EXPECT_EQ(app->newPlace, kRedText);
        // Frames asked the window system for changed rectangles only, the
        // sprite's new place among them, never for the whole page.
        bool newPlaceShown = false;
        for (const KNativeRect& area : layer.areas) {
            EXPECT_LT(area.width * area.height, StylusWindow::kDefaultWidth * StylusWindow::kDefaultHeight / 8)
                << area.x << "," << area.y << " " << area.width << "x" << area.height;
            newPlaceShown
                = newPlaceShown
                  || (area.x <= 300 && area.y <= 200 && area.x + area.width >= 320 && area.y + area.height >= 220);
        }
        EXPECT_TRUE(newPlaceShown);
        EXPECT_TRUE(app->nativeVisible);
        // The close button ended the loop and the window is gone.
        EXPECT_EQ(app->getState(), KApplication::Exited);
        EXPECT_EQ(app->getMainWindow(), nullptr);
        EXPECT_EQ(StylusWindow::current(), nullptr);
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
