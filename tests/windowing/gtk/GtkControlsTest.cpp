#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KApplication.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KColourSwatchNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KDialog.h"
#include "windowing/KEntryNativeControl.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KLayer.h"
#include "windowing/KListNativeControl.h"
#include "windowing/KMouseEvent.h"
#include "windowing/KMultiLineTextNativeControl.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KRadioGroupNativeControl.h"
#include "windowing/KScrollBarNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KSpinFieldNativeControl.h"
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

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

using Seen = std::vector<std::string>;

Seen& seen()
{
    static Seen entries;
    return entries;
}

class ControlsPage : public KWindow {
    K_DECLARE_CLASS(ControlsPage)
public:
    ControlsPage()
    {
        setTitle("TaleLoom");
        setBounds(KGraphicRectangle(40, 40, 320, 240));
    }
    // Keys that reach the window go on to the application.
};
K_DEFINE_CLASS(ControlsPage, KWindow)

class PressLayer : public KLayer {
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

std::string actionName(int32_t type)
{
    switch (type) {
    case KControlActionEvent::Clicked:
        return "clicked";
    case KControlActionEvent::Changed:
        return "changed";
    case KControlActionEvent::Activated:
        return "activated";
    default:
        return std::to_string(type);
    }
}

class ControlsDialog : public KDialog {
public:
    KEventReturn doControlAction(KControlActionEvent& event) override
    {
        auto* control = static_cast<KControl*>(event.getSource());
        seen().push_back(std::to_string(control->getId()) + " " + actionName(event.getType()));
        return KDialog::doControlAction(event);
    }
};

KGtkNativeLayer& gtkLayer() { return static_cast<KGtkNativeLayer&>(KNativeLayer::get()); }

GtkWidget* gtkWindow(KWindow& window) { return gtkLayer().gtkWindowOf(window.getNativeWindow()); }

GtkWidget* widgetOf(KControl& control) { return gtkLayer().gtkControlOf(control.getNativeControl()); }

bool isShown(KWindow& window)
{
    GdkWindow* gdkWindow = gtk_widget_get_window(gtkWindow(window));
    return gdkWindow && gdk_window_is_viewable(gdkWindow);
}

Display* xDisplay(KWindow& window) { return GDK_WINDOW_XDISPLAY(gtk_widget_get_window(gtkWindow(window))); }

// A key as the X server makes it for a user's keyboard.
void pressKey(KWindow& window, guint keyval, bool press)
{
    Display* display = xDisplay(window);
    XTestFakeKeyEvent(display, XKeysymToKeycode(display, keyval), press ? True : False, 0);
    XFlush(display);
}

void pointAt(KWindow& window, int x, int y)
{
    gint originX = 0;
    gint originY = 0;
    gdk_window_get_origin(gtk_widget_get_window(gtkWindow(window)), &originX, &originY);
    XTestFakeMotionEvent(xDisplay(window), -1, originX + x, originY + y, 0);
    XFlush(xDisplay(window));
}

void clickAt(KWindow& window, int x, int y)
{
    pointAt(window, x, y);
    XTestFakeButtonEvent(xDisplay(window), 1, True, 0);
    XTestFakeButtonEvent(xDisplay(window), 1, False, 0);
    XFlush(xDisplay(window));
}

GdkDevice* deviceOf(GdkWindow* window, bool keyboard)
{
    GdkSeat* seat = gdk_display_get_default_seat(gdk_window_get_display(window));
    return keyboard ? gdk_seat_get_keyboard(seat) : gdk_seat_get_pointer(seat);
}

// A key event handed to GTK as the server's would be, whatever window has
// the server's focus.
void sendKeyEvent(KWindow& window, guint keyval, GdkEventType type)
{
    GdkWindow* gdkWindow = gtk_widget_get_window(gtkWindow(window));
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    guint16 code = 0;
    if (gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_window_get_display(gdkWindow)), keyval, &keys,
                                          &count)
        && count > 0)
        code = guint16(keys[0].keycode);
    g_free(keys);
    GdkEvent* event = gdk_event_new(type);
    event->key.window = GDK_WINDOW(g_object_ref(gdkWindow));
    event->key.send_event = TRUE;
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = keyval;
    event->key.hardware_keycode = code;
    gdk_event_set_device(event, deviceOf(gdkWindow, true));
    gtk_main_do_event(event);
    gdk_event_free(event);
}

void typeKey(KWindow& window, guint keyval)
{
    sendKeyEvent(window, keyval, GDK_KEY_PRESS);
    sendKeyEvent(window, keyval, GDK_KEY_RELEASE);
}

void typeText(KWindow& window, const char* text)
{
    for (const char* c = text; *c; ++c)
        typeKey(window, *c == '\n' ? GDK_KEY_Return : gdk_unicode_to_keyval(guint32(*c)));
}

// A press on the page, and then the press's grab taken away.
void pressThenBreakGrab(KWindow& window, int x, int y)
{
    GdkWindow* area = gtk_widget_get_window(gtkLayer().gtkAreaOf(window.getNativeWindow()));
    GdkEvent* press = gdk_event_new(GDK_BUTTON_PRESS);
    press->button.window = GDK_WINDOW(g_object_ref(area));
    press->button.send_event = TRUE;
    press->button.button = 1;
    press->button.x = x;
    press->button.y = y;
    gdk_event_set_device(press, deviceOf(area, false));
    gtk_main_do_event(press);
    gdk_event_free(press);
    GdkEvent* broken = gdk_event_new(GDK_GRAB_BROKEN);
    broken->grab_broken.window = GDK_WINDOW(g_object_ref(area));
    broken->grab_broken.send_event = TRUE;
    gdk_event_set_device(broken, deviceOf(area, false));
    gtk_main_do_event(broken);
    gdk_event_free(broken);
}

// Picks a colour in the chooser that comes up, as the user would.
gboolean pickColour(gpointer)
{
    GList* toplevels = gtk_window_list_toplevels();
    GtkWidget* chooser = nullptr;
    for (GList* item = toplevels; item; item = item->next) {
        if (GTK_IS_COLOR_CHOOSER_DIALOG(item->data) && gtk_widget_get_visible(GTK_WIDGET(item->data)))
            chooser = GTK_WIDGET(item->data);
    }
    g_list_free(toplevels);
    if (!chooser)
        return G_SOURCE_CONTINUE;
    GdkRGBA blue { 0, 0, 1, 1 };
    gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(chooser), &blue);
    gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_OK);
    return G_SOURCE_REMOVE;
}

class KeysApp : public KApplication {
public:
    KEventReturn doKeyDown(KKeyEvent& e) override { return note("key", e); }
    KEventReturn doKeyUp(KKeyEvent& e) override { return note("key up", e); }
    KEventReturn doKeyRepeat(KKeyEvent& e) override { return note("key repeat", e); }

    void doInit() override
    {
        KWindow* main = getMainWindow();
        main->addLayer(*new PressLayer());
        main->show(true);
        g_timeout_add(50, &KeysApp::turn, this);
    }
    void doExit() override
    {
        if (dialog)
            dialog->close();
        dialog.clear();
    }
    static gboolean turn(gpointer data)
    {
        auto* app = static_cast<KeysApp*>(data);
        if (app->next < app->steps.size() && app->steps[app->next]())
            ++app->next;
        if (app->next < app->steps.size())
            return G_SOURCE_CONTINUE;
        app->requestQuit();
        return G_SOURCE_REMOVE;
    }

    KPtr<ControlsDialog> dialog;
    std::vector<std::function<bool()>> steps;
    size_t next = 0;

private:
    KEventReturn note(const char* what, KKeyEvent& e)
    {
        seen().push_back(std::string(what) + " " + std::to_string(e.getKeyCode()) + " "
                         + std::to_string(e.getModifiers() & 3));
        return 1;
    }
};

bool gGuardFired = false;

gboolean failAndStop(gpointer)
{
    gGuardFired = true;
    ADD_FAILURE() << "the controls script did not finish in time";
    if (KApplication* application = KApplication::current())
        application->clearAppFlags(KApplication::Running);
    return G_SOURCE_REMOVE;
}

struct Controls {
    KCheckBoxNativeControlPtr box { new KCheckBoxNativeControl(1, "Loop", KWideRectangle(10, 10, 150, 24)) };
    KRadioGroupNativeControlPtr group { new KRadioGroupNativeControl(2, KWideRectangle(10, 40, 150, 72),
                                                                     { "Slow", "Normal", "Fast" }) };
    KEntryNativeControlPtr entry { new KEntryNativeControl(3, "", KWideRectangle(10, 120, 150, 28), 5) };
    KMultiLineTextNativeControlPtr text { new KMultiLineTextNativeControl(4, "", KWideRectangle(10, 160, 150, 60),
                                                                          20) };
    KPopUpListNativeControlPtr popUp { new KPopUpListNativeControl(5, KWideRectangle(180, 10, 150, 30),
                                                                   { "Red", "Green", "Blue" }) };
    KSpinFieldNativeControlPtr spin { new KSpinFieldNativeControl(6, KWideRectangle(180, 50, 150, 30), 0, 10, 1) };
    KSliderNativeControlPtr slider { new KSliderNativeControl(7, KWideRectangle(180, 90, 150, 30), 0, 100, 10) };
    KScrollBarNativeControlPtr bar { new KScrollBarNativeControl(8, KWideRectangle(350, 10, 16, 200), 0, 90, 0) };
    KListNativeControlPtr list { new KListNativeControl(9, KWideRectangle(180, 130, 150, 90),
                                                        { "Cat", "Dog", "Owl" }) };
    KColourSwatchNativeControlPtr swatch { new KColourSwatchNativeControl(10, KWideRectangle(10, 230, 60, 24),
                                                                          KColor(KColor::Red)) };
    KPictureNativeControlPtr picture { new KPictureNativeControl(11, KWideRectangle(80, 230, 40, 30)) };
    KListNativeControlPtr table { new KListNativeControl(12, KWideRectangle(10, 262, 160, 34),
                                                         { "Bob\tBobby", "NYC\tNew York City" }) };

    void addTo(KDialog& dialog)
    {
        spin->setDecimals(2);
        spin->setStep(0.25);
        bar->setPage(10);
        KNativeImageData pixels;
        pixels.width = 4;
        pixels.height = 4;
        pixels.pixels.assign(16, 0x00FF00);
        picture->setPicture(pixels);
        table->setColumns({ "Word", "Exception" });
        for (KControl* control : std::initializer_list<KControl*> {
                 box.get(), group.get(), entry.get(), text.get(), popUp.get(), spin.get(), slider.get(), bar.get(),
                 list.get(), swatch.get(), picture.get(), table.get() })
            dialog.addControl(*control);
    }
};

TEST(GtkControlsTest, KeysStrokesAndEveryControlAsTheUserWorksThem)
{
    KGtkNativeLayer layer;
    KNativeLayer::install(&layer);
    knsEnterKernel();
    ASSERT_TRUE(layer.hasDisplay()) << "run this test under xvfb-run";
    kRegisterWindowingClasses();
    if (!KClass::hasClass("ControlsPage"))
        ControlsPage::registerClass();
    seen().clear();
    guint guard = g_timeout_add(30000, &failAndStop, nullptr);
    {
        KPtr<KeysApp> app(new KeysApp());
        Controls controls;
        auto main = [&]() -> KWindow& { return *app->getMainWindow(); };
        int waits = 0;
        auto wait = [&](int turns) { return ++waits > turns ? (waits = 0, true) : false; };
        app->steps = {
            [&] { return isShown(main()) && wait(2); },
            [&] {
                // Moves are never folded together.
                GtkWidget* area = gtkLayer().gtkAreaOf(main().getNativeWindow());
                EXPECT_FALSE(gdk_window_get_event_compression(gtk_widget_get_window(area)));
                EXPECT_FALSE(gdk_window_get_event_compression(gtk_widget_get_window(gtkWindow(main()))));
                // Keys from the server's keyboard, Control with a letter
                // among them.
                gtk_window_present(GTK_WINDOW(gtkWindow(main())));
                pointAt(main(), 100, 100);
                return true;
            },
            [&] { return wait(3); },
            [&] {
                pressKey(main(), GDK_KEY_a, true);
                pressKey(main(), GDK_KEY_a, false);
                pressKey(main(), GDK_KEY_Left, true);
                pressKey(main(), GDK_KEY_Left, false);
                pressKey(main(), GDK_KEY_Control_L, true);
                pressKey(main(), GDK_KEY_c, true);
                pressKey(main(), GDK_KEY_c, false);
                pressKey(main(), GDK_KEY_Control_L, false);
                return true;
            },
            [&] { return seen().size() >= 6 || wait(20); },
            [&] {
                EXPECT_EQ(seen(),
                          (Seen { "key 97 0", "key up 97 0", "key 273 0", "key up 273 0", "key 99 2", "key up 99 2" }));
                // The keyboard's repeat: the key pressed again without a
                // release in between.
                seen().clear();
                sendKeyEvent(main(), GDK_KEY_b, GDK_KEY_PRESS);
                sendKeyEvent(main(), GDK_KEY_b, GDK_KEY_PRESS);
                sendKeyEvent(main(), GDK_KEY_b, GDK_KEY_RELEASE);
                EXPECT_EQ(seen(), (Seen { "key 98 0", "key repeat 98 0", "key up 98 0" }));
                // A press whose grab is taken away is let go at once,
                // where the pointer is.
                seen().clear();
                pressThenBreakGrab(main(), 20, 30);
                EXPECT_EQ(seen(), (Seen { "down 20,30", "up 100,100" }));
                seen().clear();
                app->dialog = new ControlsDialog();
                app->dialog->setTitle("Controls");
                app->dialog->setBounds(KGraphicRectangle(400, 40, 380, 300));
                app->dialog->open(KWindow::Normal, KDialog::OkButton);
                controls.addTo(*app->dialog);
                return true;
            },
            [&] { return isShown(*app->dialog) && wait(2); },
            [&] {
                KDialog& dialog = *app->dialog;
                // Buttons, lists and sliders worked through GTK.
                gtk_button_clicked(GTK_BUTTON(widgetOf(*controls.box)));
                GList* radios = gtk_container_get_children(GTK_CONTAINER(widgetOf(*controls.group)));
                EXPECT_EQ(g_list_length(radios), 3u);
                gtk_button_clicked(GTK_BUTTON(g_list_nth_data(radios, 2)));
                g_list_free(radios);
                gtk_combo_box_set_active(GTK_COMBO_BOX(widgetOf(*controls.popUp)), 1);
                gtk_spin_button_spin(GTK_SPIN_BUTTON(widgetOf(*controls.spin)), GTK_SPIN_STEP_FORWARD, 0.25);
                gtk_range_set_value(GTK_RANGE(widgetOf(*controls.slider)), 42.4);
                gboolean handled = FALSE;
                g_signal_emit_by_name(widgetOf(*controls.bar), "move-slider", GTK_SCROLL_PAGE_FORWARD, &handled);
                GtkTreeView* view = GTK_TREE_VIEW(gtk_bin_get_child(GTK_BIN(widgetOf(*controls.list))));
                GtkTreePath* path = gtk_tree_path_new_from_indices(1, -1);
                gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
                gtk_tree_view_row_activated(view, path, gtk_tree_view_get_column(view, 0));
                gtk_tree_path_free(path);
                // Text typed into the fields that have GTK's focus; the
                // entry takes five characters, the text a new line.
                gtk_widget_grab_focus(widgetOf(*controls.entry));
                typeText(dialog, "Kittens");
                gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(widgetOf(*controls.text))));
                typeText(dialog, "a\nb");
                return true;
            },
            [&] {
                EXPECT_TRUE(controls.box->isChecked());
                EXPECT_EQ(controls.group->getSelected(), 2);
                EXPECT_EQ(controls.popUp->getSelected(), 1);
                EXPECT_DOUBLE_EQ(controls.spin->getValue(), 1.25);
                EXPECT_EQ(controls.slider->getValue(), 42);
                EXPECT_EQ(controls.bar->getValue(), 10);
                EXPECT_EQ(controls.list->getSelected(), 1);
                // A list of columns shows their headings and a cell each.
                GtkTreeView* table = GTK_TREE_VIEW(gtk_bin_get_child(GTK_BIN(widgetOf(*controls.table))));
                EXPECT_TRUE(gtk_tree_view_get_headers_visible(table));
                EXPECT_EQ(gtk_tree_view_get_n_columns(table), 2u);
                EXPECT_STREQ(gtk_tree_view_column_get_title(gtk_tree_view_get_column(table, 1)), "Exception");
                GtkTreeModel* rows = gtk_tree_view_get_model(table);
                GtkTreeIter row;
                gchar* cell = nullptr;
                if (gtk_tree_model_iter_nth_child(rows, &row, nullptr, 1))
                    gtk_tree_model_get(rows, &row, 1, &cell, -1);
                EXPECT_STREQ(cell, "New York City");
                g_free(cell);
                EXPECT_STREQ(controls.entry->getText().c_str(), "Kitte");
                EXPECT_STREQ(controls.text->getText().c_str(), "a\nb");
                Seen firstActions(seen().begin(), seen().begin() + std::min<ptrdiff_t>(9, ptrdiff_t(seen().size())));
                EXPECT_EQ(firstActions, (Seen { "1 changed", "2 changed", "5 changed", "6 changed", "7 changed",
                                                "8 changed", "9 changed", "9 activated", "3 changed" }));
                EXPECT_EQ(std::count(seen().begin(), seen().end(), "3 changed"), 5);
                EXPECT_EQ(std::count(seen().begin(), seen().end(), "4 changed"), 3);
                // What the program sets tells nothing back.
                seen().clear();
                controls.box->setChecked(false);
                controls.group->setSelected(0);
                controls.popUp->setSelected(2);
                controls.spin->setValue(3.5);
                controls.list->setSelected(-1);
                controls.entry->setText("Dog");
                controls.text->setText("Owl");
                EXPECT_TRUE(seen().empty());
                EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(widgetOf(*controls.popUp))), 2);
                EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgetOf(*controls.entry))), "Dog");
                EXPECT_EQ(gtk_spin_button_get_digits(GTK_SPIN_BUTTON(widgetOf(*controls.spin))), 2u);
                // The swatch asks for a colour; the picture is clicked.
                g_timeout_add(100, &pickColour, nullptr);
                gtk_button_clicked(GTK_BUTTON(widgetOf(*controls.swatch)));
                EXPECT_EQ(controls.swatch->getColour().getBlue(), 65535);
                EXPECT_EQ(controls.swatch->getColour().getRed(), 0);
                gtk_window_present(GTK_WINDOW(gtkWindow(*app->dialog)));
                return true;
            },
            [&] { return wait(3); },
            [&] {
                clickAt(*app->dialog, 100, 245);
                return true;
            },
            [&] { return seen().size() >= 2 || wait(20); },
            [&] {
                EXPECT_EQ(seen(), (Seen { "10 changed", "11 clicked" }));
                // A number typed into the spin field and not yet read by
                // GTK counts before the OK button's press.
                seen().clear();
                GtkWidget* spin = widgetOf(*controls.spin);
                gtk_widget_grab_focus(spin);
                gtk_entry_set_text(GTK_ENTRY(spin), "4.5");
                gtk_button_clicked(GTK_BUTTON(widgetOf(*app->dialog->getDefaultButton())));
                EXPECT_EQ(controls.spin->getValue(), 4.5);
                EXPECT_EQ(seen(), (Seen { "6 changed", "1 clicked" }));
                EXPECT_FALSE(app->dialog->isOpen());
                EXPECT_EQ(app->dialog->getResult(), 1);
                return true;
            },
        };
        const char* arguments[] = { "taleloom" };
        app->run("ControlsPage", 1, arguments);
        EXPECT_EQ(app->next, app->steps.size());
    }
    if (!gGuardFired)
        g_source_remove(guard);
    knsExitKernel();
    KErrorHandler::loadKernelErrors();
    KNativeLayer::install(nullptr);
}

} // namespace
