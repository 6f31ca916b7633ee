// The menu bar on a real display: the GtkMenuBar shows the model, and an
// accelerator typed in the main window runs its item.

#include "app/StylusActions.h"
#include "app/StylusApplication.h"
#include "app/StylusMenuBar.h"
#include "app/StylusWindow.h"
#include "kernel/KErrorHandler.h"
#include "project/StylusProject.h"
#include "tape/StylusPause.h"
#include "tape/Tape.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace {

KGtkNativeLayer& gtkLayer() { return static_cast<KGtkNativeLayer&>(KNativeLayer::get()); }

// The differences between a GTK menu shell and the model's items.
void compareShell(GtkWidget* shell, const std::vector<KNativeMenuItem>& items, const std::string& where,
                  std::vector<std::string>& differences)
{
    GList* children = gtk_container_get_children(GTK_CONTAINER(shell));
    size_t index = 0;
    for (GList* child = children; child; child = child->next, ++index) {
        GtkWidget* widget = GTK_WIDGET(child->data);
        if (index >= items.size()) {
            differences.push_back(where + ": an extra widget");
            break;
        }
        const KNativeMenuItem& item = items[index];
        if (item.separator) {
            if (!GTK_IS_SEPARATOR_MENU_ITEM(widget))
                differences.push_back(where + ": a separator expected");
            continue;
        }
        const char* label = gtk_menu_item_get_label(GTK_MENU_ITEM(widget));
        std::string text = label ? label : "";
        if (text != item.text)
            differences.push_back(where + ": \"" + text + "\" for \"" + item.text + "\"");
        if (bool(gtk_widget_get_sensitive(widget)) != item.enabled)
            differences.push_back(where + ": " + item.text + " enabled differs");
        if (item.checkable && bool(gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(widget))) != item.checked)
            differences.push_back(where + ": " + item.text + " tick differs");
        if (GtkWidget* sub = gtk_menu_item_get_submenu(GTK_MENU_ITEM(widget)))
            compareShell(sub, item.children, where + "/" + item.text, differences);
    }
    g_list_free(children);
    if (index < items.size())
        differences.push_back(where + ": widgets missing");
}

// A key press as the window system hands it to the window.
void pressControlKey(GtkWidget* window, guint keyval)
{
    GdkEvent* event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->key.send_event = TRUE;
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = keyval;
    event->key.state = GDK_CONTROL_MASK;
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    if (gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_display_get_default()), keyval, &keys, &count)
        && count > 0)
        event->key.hardware_keycode = guint16(keys[0].keycode);
    g_free(keys);
    GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
    gdk_event_set_device(event, gdk_seat_get_keyboard(seat));
    gtk_widget_event(window, event);
    gdk_event_free(event);
}

class ScriptedApp : public StylusApplication {
public:
    void scheduleStartupDialog() override { }
    void doInit() override
    {
        StylusApplication::doInit();
        g_timeout_add(400, &checkStrip, this);
    }

    static GtkWidget* mainWindow() { return gtkLayer().gtkWindowOf(StylusWindow::current()->getNativeWindow()); }

    static gboolean checkStrip(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        StylusMenuBar& bar = *app->getStylusMenuBar();
        // Something to play, so that Play is on; put straight on the tape,
        // since inserting from the palette would open the pause's dialog.
        app->getProject()->getTape()->addElement(*TapeObjectPtr(kAdopt(new StylusPause())));
        bar.update();
        GtkWidget* strip = gtkLayer().gtkMenuBarOf(StylusWindow::current()->getNativeWindow());
        app->stripFound = strip != nullptr;
        if (strip) {
            app->stripShown = gtk_widget_get_visible(strip);
            compareShell(strip, bar.nativeMenus(), "bar", app->differences);
            bar.setShown(false);
            app->stripHidden = !gtk_widget_get_visible(strip);
        }
        // Control+G through the window system, with the strip hidden.
        pressControlKey(mainWindow(), GDK_KEY_g);
        g_timeout_add(300, &checkPlaying, app);
        return G_SOURCE_REMOVE;
    }

    static gboolean checkPlaying(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        Tape* tape = app->getProject()->getTape();
        app->playedByKey = tape->getPlayState() != Tape::PlayState::Stopped || tape->getPlayIndex() > 0;
        StylusActions::current()->stopPlay();
        tape->clearModified();
        gtk_window_close(GTK_WINDOW(mainWindow()));
        return G_SOURCE_REMOVE;
    }

    bool stripFound = false;
    bool stripShown = false;
    bool stripHidden = false;
    bool playedByKey = false;
    std::vector<std::string> differences;
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

TEST(MenuBarGtkTest, TheGtkMenuBarShowsTheModelAndAnAcceleratorRunsItsItemWithTheBarHidden)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    guint guard = g_timeout_add(15000, &failAndStop, nullptr);
    {
        KPtr<ScriptedApp> app(new ScriptedApp());
        const char* arguments[] = { "taleloom" };
        app->run("StylusWindow", 1, arguments);
        EXPECT_TRUE(app->stripFound);
        EXPECT_TRUE(app->stripShown);
        EXPECT_TRUE(app->stripHidden);
        EXPECT_TRUE(app->differences.empty()) << app->differences.front();
        EXPECT_TRUE(app->playedByKey);
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
