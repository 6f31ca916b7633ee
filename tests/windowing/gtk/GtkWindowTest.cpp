#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KApplicationEvent.h"
#include "windowing/KServices.h"
#include "windowing/KTimerManager.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <string>

namespace {

class TitledWindow : public KWindow {
    K_DECLARE_CLASS(TitledWindow)
public:
    TitledWindow()
    {
        setTitle("TaleLoom");
        setBounds(KGraphicRectangle(0, 0, 400, 300));
    }
};
K_DEFINE_CLASS(TitledWindow, KWindow)

KGtkNativeLayer& gtkLayer() { return static_cast<KGtkNativeLayer&>(KNativeLayer::get()); }

GtkWindow* mainGtkWindow()
{
    KWindow* window = KApplication::current()->getMainWindow();
    return GTK_WINDOW(gtkLayer().gtkWindowOf(window->getNativeWindow()));
}

// Shows the main window, then asks the window system to close it as a
// user's click on the close button would, once the window is up.
class ClosingApp : public KApplication {
public:
    void doInit() override
    {
        getMainWindow()->show(true);
        g_timeout_add(300, &inspectAndClose, this);
    }
    KEventReturn doQuit(KApplicationEvent&) override
    {
        ++quitRequests;
        return 2;
    }
    static gboolean inspectAndClose(gpointer data)
    {
        auto* app = static_cast<ClosingApp*>(data);
        GtkWindow* window = mainGtkWindow();
        app->title = gtk_window_get_title(window);
        app->visible = gtk_widget_get_visible(GTK_WIDGET(window));
        gtk_window_close(window);
        return G_SOURCE_REMOVE;
    }

    int quitRequests = 0;
    std::string title;
    bool visible = false;
};

bool gGuardFired = false;

gboolean failAndStop(gpointer)
{
    gGuardFired = true;
    ADD_FAILURE() << "the window was not closed in time";
    if (KApplication* application = KApplication::current())
        application->clearAppFlags(KApplication::Running);
    return G_SOURCE_REMOVE;
}

TEST(GtkWindowTest, MainWindowOpensTitledAndItsCloseQuitsTheLoop)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    if (!KClass::hasClass("TitledWindow"))
        TitledWindow::registerClass();
    guint guard = g_timeout_add(10000, &failAndStop, nullptr);
    {
        KPtr<ClosingApp> app(new ClosingApp());
        const char* arguments[] = { "taleloom" };
        app->run("TitledWindow", 1, arguments);
        EXPECT_EQ(app->title, "TaleLoom");
        EXPECT_TRUE(app->visible);
        EXPECT_EQ(app->quitRequests, 1);
        EXPECT_EQ(app->getState(), KApplication::Exited);
        EXPECT_EQ(app->getMainWindow(), nullptr);
    }
    if (!gGuardFired)
        g_source_remove(guard);
    EXPECT_EQ(layer.exitCode(), 0);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
