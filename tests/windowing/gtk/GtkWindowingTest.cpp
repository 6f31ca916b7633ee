#include "graphics/KColor.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KPath.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KClipboardManager.h"
#include "windowing/KDialog.h"
#include "windowing/KDialogHandler.h"
#include "windowing/KLayer.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KPaletteWindow.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowingClasses.h"
#include "windowing/native/KGtkNativeLayer.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

// After the test framework, whose names the X headers' macros would hit.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <gdk/gdkx.h>
#undef None
#undef Bool
#undef Status

#include <functional>
#include <string>
#include <vector>

namespace {

// The file chooser talks to the desktop's settings and file services over
// D-Bus, which a bare X server lacks: this program uses local stand-ins.
const bool gLocalDesktopServices = [] {
    g_setenv("GSETTINGS_BACKEND", "memory", TRUE);
    g_setenv("GIO_USE_VFS", "local", TRUE);
    return true;
}();

class PageWindow : public KWindow {
    K_DECLARE_CLASS(PageWindow)
public:
    PageWindow()
    {
        setTitle("TaleLoom");
        setBounds(KGraphicRectangle(50, 50, 320, 240));
    }
};
K_DEFINE_CLASS(PageWindow, KWindow)

std::vector<std::string>& seen()
{
    static std::vector<std::string> entries;
    return entries;
}

class ClickLayer : public KLayer {
public:
    KEventReturn doMouseDown(KMouseEvent& e) override
    {
        seen().push_back("down " + std::to_string(e.getLocal().x) + "," + std::to_string(e.getLocal().y));
        return 4;
    }
    KEventReturn doMouseUp(KMouseEvent& e) override
    {
        seen().push_back("up " + std::to_string(e.getLocal().x) + "," + std::to_string(e.getLocal().y));
        return 1;
    }
};

KGtkNativeLayer& gtkLayer() { return static_cast<KGtkNativeLayer&>(KNativeLayer::get()); }

GtkWidget* gtkWindow(KWindow& window) { return gtkLayer().gtkWindowOf(window.getNativeWindow()); }

bool isShown(KWindow& window)
{
    GdkWindow* gdkWindow = gtk_widget_get_window(gtkWindow(window));
    return gdkWindow && gdk_window_is_viewable(gdkWindow);
}

// The place of a window among the root's children, bottom first: without
// a window manager the toplevels are the root's own children.
int stackIndex(KWindow& window)
{
    GdkWindow* gdkWindow = gtk_widget_get_window(gtkWindow(window));
    Display* display = GDK_WINDOW_XDISPLAY(gdkWindow);
    ::Window target = GDK_WINDOW_XID(gdkWindow);
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    int index = -1;
    for (unsigned i = 0; i < count; ++i) {
        // Under a reparenting manager the frame holds the window.
        ::Window r = 0;
        ::Window p = 0;
        ::Window* inner = nullptr;
        unsigned innerCount = 0;
        bool holds = children[i] == target;
        if (!holds && XQueryTree(display, children[i], &r, &p, &inner, &innerCount)) {
            for (unsigned j = 0; j < innerCount; ++j)
                holds = holds || inner[j] == target;
            if (inner)
                XFree(inner);
        }
        if (holds)
            index = int(i);
    }
    if (children)
        XFree(children);
    return index;
}

// Moves the pointer to the point of the window and clicks there, through
// the server's test extension.
void click(KWindow& window, int x, int y)
{
    GdkWindow* gdkWindow = gtk_widget_get_window(gtkWindow(window));
    Display* display = GDK_WINDOW_XDISPLAY(gdkWindow);
    gint originX = 0;
    gint originY = 0;
    gdk_window_get_origin(gdkWindow, &originX, &originY);
    XTestFakeMotionEvent(display, -1, originX + x, originY + y, 0);
    XTestFakeButtonEvent(display, 1, True, 0);
    XTestFakeButtonEvent(display, 1, False, 0);
    XFlush(display);
}

// The steps of the test, each run when the one before reports it is done.
class ScriptedApp : public KApplication {
public:
    void doInit() override
    {
        KWindow* main = getMainWindow();
        main->addLayer(*new ClickLayer());
        main->show(true);
        palette = new KPaletteWindow();
        palette->setTitle("Tools");
        palette->setBounds(KGraphicRectangle(60, 320, 300, 60));
        palette->open(KWindow::Normal);
        g_timeout_add(50, &ScriptedApp::turn, this);
    }
    void doExit() override
    {
        if (palette)
            palette->close();
        palette.clear();
    }
    static gboolean turn(gpointer data)
    {
        auto* app = static_cast<ScriptedApp*>(data);
        if (app->next >= app->steps.size())
            return G_SOURCE_REMOVE;
        if (app->steps[app->next]())
            ++app->next;
        if (app->next < app->steps.size())
            return G_SOURCE_CONTINUE;
        app->requestQuit();
        return G_SOURCE_REMOVE;
    }

    KPaletteWindowPtr palette;
    std::vector<std::function<bool()>> steps;
    size_t next = 0;
};

bool gGuardFired = false;

gboolean failAndStop(gpointer)
{
    gGuardFired = true;
    ADD_FAILURE() << "the windowing script did not finish in time";
    if (KApplication* application = KApplication::current())
        application->clearAppFlags(KApplication::Running);
    return G_SOURCE_REMOVE;
}

gboolean pressOk(gpointer data)
{
    auto* dialog = static_cast<KDialog*>(data);
    KWindow* main = KApplication::current()->getMainWindow();
    GtkWidget* dialogWindow = gtkWindow(*dialog);
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialogWindow)));
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialogWindow)), GTK_WINDOW(gtkWindow(*main)));
    EXPECT_FALSE(gtk_widget_get_sensitive(gtk_bin_get_child(GTK_BIN(gtkWindow(*main)))));
    EXPECT_TRUE(gtk_widget_get_sensitive(gtk_bin_get_child(GTK_BIN(dialogWindow))));
    GtkWidget* ok = gtkLayer().gtkControlOf(dialog->getDefaultButton()->getNativeControl());
    EXPECT_TRUE(GTK_IS_BUTTON(ok));
    if (GTK_IS_BUTTON(ok))
        gtk_button_clicked(GTK_BUTTON(ok));
    else
        dialog->endDialog(0);
    return G_SOURCE_REMOVE;
}

TEST(GtkWindowingTest, WindowsPalettesDialogsAndTheClipboardOnTheDisplay)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    if (!KClass::hasClass("PageWindow"))
        PageWindow::registerClass();
    seen().clear();
    guint guard = g_timeout_add(20000, &failAndStop, nullptr);
    {
        KPtr<ScriptedApp> app(new ScriptedApp());
        auto main = [&]() -> KWindow& { return *app->getMainWindow(); };
        int waits = 0;
        app->steps = {
            // Both windows come up; the palette is a utility window over
            // the main window, and stays over it when the main window is
            // raised and activated.
            [&] { return isShown(main()) && isShown(*app->palette) && ++waits > 2; },
            [&] {
                GtkWindow* palette = GTK_WINDOW(gtkWindow(*app->palette));
                EXPECT_EQ(gtk_window_get_type_hint(palette), GDK_WINDOW_TYPE_HINT_UTILITY);
                EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(palette));
                EXPECT_EQ(gtk_window_get_transient_for(palette), GTK_WINDOW(gtkWindow(main())));
                EXPECT_GT(stackIndex(*app->palette), stackIndex(main()));
                gtk_window_present(GTK_WINDOW(gtkWindow(main())));
                waits = 0;
                return true;
            },
            [&] { return ++waits > 3; },
            [&] {
                EXPECT_GT(stackIndex(*app->palette), stackIndex(main()));
                // A click on the main window, made by the X server as a
                // user's would be, reaches its layer.
                click(main(), 30, 40);
                waits = 0;
                return true;
            },
            [&] { return seen().size() >= 2 || ++waits > 20; },
            [&] {
                EXPECT_EQ(seen(), (std::vector<std::string> { "down 30,40", "up 30,40" }));
                // What is drawn on the window is what the display shows.
                main().fillRectangle(KGraphicRectangle(5, 5, 10, 10), KColor(KColor::Red));
                GtkWidget* area = gtkLayer().gtkAreaOf(main().getNativeWindow());
                cairo_surface_t* shot = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 40, 40);
                cairo_t* cr = cairo_create(shot);
                gtk_widget_draw(area, cr);
                cairo_destroy(cr);
                cairo_surface_flush(shot);
                auto* pixels = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(shot));
                int stride = cairo_image_surface_get_stride(shot) / 4;
                EXPECT_EQ(pixels[7 * stride + 7] & 0xFFFFFF, 0xFF0000u);
                EXPECT_EQ(pixels[30 * stride + 30] & 0xFFFFFF, 0u);
                cairo_surface_destroy(shot);
                return true;
            },
            [&] {
                // Text goes through the system clipboard in both directions,
                // converted between the framework's set and UTF-8.
                KClipboardManager* clipboard = KClipboardManager::current();
                EXPECT_TRUE(clipboard->setText("caf\xE9 \x80"));
                KString back;
                EXPECT_TRUE(clipboard->getText(back));
                EXPECT_STREQ(back.c_str(), "caf\xE9 \x80");
                gchar* utf8 = gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
                EXPECT_STREQ(utf8, "caf\xC3\xA9 \xE2\x82\xAC");
                g_free(utf8);
                return true;
            },
            [&] {
                // A modal dialog disables the others until it closes.
                KDialogPtr dialog(new KDialog());
                g_timeout_add(300, &pressOk, dialog.get());
                EXPECT_EQ(dialog->runModal(), 1);
                EXPECT_TRUE(gtk_widget_get_sensitive(gtk_bin_get_child(GTK_BIN(gtkWindow(main())))));
                EXPECT_TRUE(gtk_widget_get_sensitive(gtk_bin_get_child(GTK_BIN(gtkWindow(*app->palette)))));
                EXPECT_TRUE(app->palette->isEnabled());
                return true;
            },
        };
        const char* arguments[] = { "taleloom" };
        app->run("PageWindow", 1, arguments);
        EXPECT_EQ(app->next, app->steps.size());
        EXPECT_EQ(app->getState(), KApplication::Exited);
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

// Answers the next native dialog that comes up, as the user would. A
// file chooser still reading its folder refuses an answer: it is given
// again until the dialog is gone.
struct Answer {
    gint response = GTK_RESPONSE_CANCEL;
    std::function<void(GtkDialog*)> before;
    GtkDialog* dialog = nullptr;
    guint source = 0;
};

bool isShownDialog(gpointer window, GtkDialog* wanted)
{
    return GTK_IS_DIALOG(window) && gtk_widget_get_visible(GTK_WIDGET(window))
           && (!wanted || GTK_DIALOG(window) == wanted);
}

gboolean answer(gpointer data)
{
    auto* wanted = static_cast<Answer*>(data);
    GList* toplevels = gtk_window_list_toplevels();
    GtkDialog* found = nullptr;
    for (GList* item = toplevels; item; item = item->next) {
        if (isShownDialog(item->data, wanted->dialog))
            found = GTK_DIALOG(item->data);
    }
    g_list_free(toplevels);
    if (!found) {
        if (!wanted->dialog)
            return G_SOURCE_CONTINUE;
        wanted->source = 0;
        return G_SOURCE_REMOVE;
    }
    if (!wanted->dialog) {
        // While it is up, the framework refuses every event.
        EXPECT_TRUE(KEvent::isNativeModalUp());
        wanted->dialog = found;
        if (wanted->before)
            wanted->before(found);
    }
    gtk_dialog_response(found, wanted->response);
    return G_SOURCE_CONTINUE;
}

void expectAnswer(Answer& wanted) { wanted.source = g_timeout_add(50, &answer, &wanted); }

void answered(Answer& wanted)
{
    EXPECT_NE(wanted.dialog, nullptr);
    if (wanted.source)
        g_source_remove(wanted.source);
    wanted.source = 0;
}

TEST(GtkWindowingTest, ChoosersAndBoxesAnswerAsTheUserDoes)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    kRegisterFrameworkFileTypes();
    {
        KDialogHandlerPtr handler(new KDialogHandler());
        KFileTypeID text = KFileTypeHandler::getAssociation(KString("TXT"))->getID();
        KPath original(KString("/tmp/old.txt"), KPath::LinuxPlatform);
        KFileReferencePtr file(new KFileReference(original));

        // A cancelled save leaves the reference alone.
        Answer cancel;
        expectAnswer(cancel);
        EXPECT_FALSE(handler->doSaveDialog(*file, "Save", text));
        answered(cancel);
        EXPECT_TRUE(file->getPath() == original);
        EXPECT_FALSE(KEvent::isNativeModalUp());

        // A name typed without its extension gets the type's.
        Answer save { GTK_RESPONSE_ACCEPT, [](GtkDialog* dialog) {
                         GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
                         EXPECT_EQ(gtk_file_chooser_get_action(chooser), GTK_FILE_CHOOSER_ACTION_SAVE);
                         gtk_file_chooser_set_current_name(chooser, "new story");
                     } };
        expectAnswer(save);
        EXPECT_TRUE(handler->doSaveDialog(*file, "Save", text));
        answered(save);
        EXPECT_STREQ(file->getPath().getNativeText().c_str(), "/tmp/new story.txt");

        KColor colour(0, 0, 65535);
        Answer pick { GTK_RESPONSE_OK, [](GtkDialog* dialog) {
                         GdkRGBA red { 1.0, 0.0, 0.0, 1.0 };
                         gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(dialog), &red);
                     } };
        expectAnswer(pick);
        EXPECT_TRUE(handler->doColorDialog(colour));
        answered(pick);
        EXPECT_EQ(colour, KColor(65535, 0, 0));

        Answer no { GTK_RESPONSE_NO, nullptr };
        expectAnswer(no);
        EXPECT_EQ(askYesNoCancel("Question", "Keep it?"), 3);
        answered(no);
        // Closing a box is its cancel.
        Answer closed { GTK_RESPONSE_DELETE_EVENT, nullptr };
        expectAnswer(closed);
        EXPECT_EQ(askOkCancel("Question", "Go on?"), 0);
        answered(closed);
    }
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
