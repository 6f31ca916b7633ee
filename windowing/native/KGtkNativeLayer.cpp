#include "windowing/native/KGtkNativeLayer.h"

#include "kernel/KErrorHandler.h"
#include "windowing/KEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/native/KGtkKeys.h"
#include "windowing/native/KGtkText.h"

#include <gtk/gtk.h>

namespace {

// The pointer is asked of the X server at most this often; motion events
// keep it current in between.
constexpr int32_t kPointerQueryPeriod = 20;

struct GtkWindowHandle {
    KGtkNativeLayer* layer = nullptr;
    KWindow* owner = nullptr;
    GtkWidget* window = nullptr;
    GtkWidget* area = nullptr;
    int32_t lastX = INT32_MIN;
    int32_t lastY = INT32_MIN;
    int32_t lastWidth = -1;
    int32_t lastHeight = -1;
};

KNativeRecord recordFor(GtkWindowHandle* handle, int32_t message, int32_t param1 = 0, int32_t param2 = 0)
{
    KNativeRecord record;
    record.window = handle->owner;
    record.message = message;
    record.param1 = param1;
    record.param2 = param2;
    record.time = handle->layer->now();
    return record;
}

KEventReturn deliver(GtkWindowHandle* handle, int32_t message, int32_t param1 = 0, int32_t param2 = 0)
{
    if (!handle->owner)
        return 0;
    return kksDeliverNativeRecord(recordFor(handle, message, param1, param2));
}

// --- Window procedure ------------------------------------------------------

gboolean onDelete(GtkWidget*, GdkEvent*, gpointer data)
{
    deliver(static_cast<GtkWindowHandle*>(data), KNativeMessage::Close);
    // The framework decides: a close it agrees to destroys the window.
    return TRUE;
}

gboolean onConfigure(GtkWidget*, GdkEventConfigure* event, gpointer data)
{
    auto* handle = static_cast<GtkWindowHandle*>(data);
    if (event->x != handle->lastX || event->y != handle->lastY) {
        handle->lastX = event->x;
        handle->lastY = event->y;
        deliver(handle, KNativeMessage::Move, event->x, event->y);
    }
    if (event->width != handle->lastWidth || event->height != handle->lastHeight) {
        handle->lastWidth = event->width;
        handle->lastHeight = event->height;
        deliver(handle, KNativeMessage::Size, event->width, event->height);
    }
    return FALSE;
}

gboolean anyWindowActive()
{
    GList* toplevels = gtk_window_list_toplevels();
    gboolean active = FALSE;
    for (GList* item = toplevels; item && !active; item = item->next)
        active = gtk_window_is_active(GTK_WINDOW(item->data));
    g_list_free(toplevels);
    return active;
}

// The program as a whole loses activation only when focus has left all of
// its windows, which is known once the focus change has settled.
gboolean settleApplicationActivation(gpointer data)
{
    auto* handle = static_cast<GtkWindowHandle*>(data);
    KNativeRecord record = recordFor(handle, KNativeMessage::ActivateApp, anyWindowActive() ? 1 : 0);
    record.window = nullptr;
    kksDeliverNativeRecord(record);
    return G_SOURCE_REMOVE;
}

gboolean onFocusIn(GtkWidget*, GdkEventFocus*, gpointer data)
{
    auto* handle = static_cast<GtkWindowHandle*>(data);
    KNativeRecord appRecord = recordFor(handle, KNativeMessage::ActivateApp, 1);
    appRecord.window = nullptr;
    kksDeliverNativeRecord(appRecord);
    deliver(handle, KNativeMessage::Activate, 1);
    return FALSE;
}

gboolean onFocusOut(GtkWidget*, GdkEventFocus*, gpointer data)
{
    auto* handle = static_cast<GtkWindowHandle*>(data);
    deliver(handle, KNativeMessage::Activate, 0);
    g_idle_add(&settleApplicationActivation, handle);
    return FALSE;
}

gboolean onKeyPress(GtkWidget* widget, GdkEventKey* event, gpointer data)
{
    auto* handle = static_cast<GtkWindowHandle*>(data);
    if (gtk_window_activate_key(GTK_WINDOW(widget), event))
        return TRUE;
    int32_t virtualKey = kGtkVirtualKey(event->keyval);
    if (virtualKey != 0)
        deliver(handle, KNativeMessage::KeyDown, virtualKey);
    int32_t character = kGtkCharacter(event->keyval, event->state);
    if (character >= 32)
        deliver(handle, KNativeMessage::Char, character);
    return TRUE;
}

int32_t mouseKeys(guint state)
{
    int32_t keys = 0;
    if (state & GDK_BUTTON1_MASK)
        keys |= KMouseKeys::LeftButton;
    if (state & GDK_BUTTON3_MASK)
        keys |= KMouseKeys::RightButton;
    if (state & GDK_SHIFT_MASK)
        keys |= KMouseKeys::Shift;
    if (state & GDK_CONTROL_MASK)
        keys |= KMouseKeys::Control;
    return keys;
}

KEventReturn deliverMouse(GtkWindowHandle* handle, int32_t message, int32_t keys, double x, double y, double rootX,
                          double rootY)
{
    if (!handle->owner)
        return 0;
    KNativeRecord record = recordFor(handle, message, keys, kPackPoint(static_cast<int32_t>(x), static_cast<int32_t>(y)));
    record.x = static_cast<int32_t>(rootX);
    record.y = static_cast<int32_t>(rootY);
    handle->layer->notePointer(record.x, record.y);
    return kksDeliverNativeRecord(record);
}

// GTK reports the button state before the change; the records carry it
// after, as the translator expects.
gboolean onButtonPress(GtkWidget*, GdkEventButton* event, gpointer data)
{
    if (event->type != GDK_BUTTON_PRESS)
        return TRUE;
    int32_t keys = mouseKeys(event->state);
    int32_t message = 0;
    if (event->button == 1) {
        message = KNativeMessage::LeftDown;
        keys |= KMouseKeys::LeftButton;
    } else if (event->button == 3) {
        message = KNativeMessage::RightDown;
        keys |= KMouseKeys::RightButton;
    } else {
        return FALSE;
    }
    deliverMouse(static_cast<GtkWindowHandle*>(data), message, keys, event->x, event->y, event->x_root, event->y_root);
    return TRUE;
}

gboolean onButtonRelease(GtkWidget*, GdkEventButton* event, gpointer data)
{
    int32_t keys = mouseKeys(event->state);
    int32_t message = 0;
    if (event->button == 1) {
        message = KNativeMessage::LeftUp;
        keys &= ~KMouseKeys::LeftButton;
    } else if (event->button == 3) {
        message = KNativeMessage::RightUp;
        keys &= ~KMouseKeys::RightButton;
    } else {
        return FALSE;
    }
    deliverMouse(static_cast<GtkWindowHandle*>(data), message, keys, event->x, event->y, event->x_root, event->y_root);
    return TRUE;
}

gboolean onMotion(GtkWidget*, GdkEventMotion* event, gpointer data)
{
    deliverMouse(static_cast<GtkWindowHandle*>(data), KNativeMessage::MouseMove, mouseKeys(event->state), event->x,
                 event->y, event->x_root, event->y_root);
    return TRUE;
}

gboolean onDraw(GtkWidget*, cairo_t* cr, gpointer data)
{
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    deliver(static_cast<GtkWindowHandle*>(data), KNativeMessage::Paint);
    return TRUE;
}

void connectWindowProcedure(GtkWindowHandle* handle)
{
    g_signal_connect(handle->window, "delete-event", G_CALLBACK(onDelete), handle);
    g_signal_connect(handle->window, "configure-event", G_CALLBACK(onConfigure), handle);
    g_signal_connect(handle->window, "focus-in-event", G_CALLBACK(onFocusIn), handle);
    g_signal_connect(handle->window, "focus-out-event", G_CALLBACK(onFocusOut), handle);
    g_signal_connect(handle->window, "key-press-event", G_CALLBACK(onKeyPress), handle);
    gtk_widget_add_events(handle->area, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK);
    g_signal_connect(handle->area, "button-press-event", G_CALLBACK(onButtonPress), handle);
    g_signal_connect(handle->area, "button-release-event", G_CALLBACK(onButtonRelease), handle);
    g_signal_connect(handle->area, "motion-notify-event", G_CALLBACK(onMotion), handle);
    g_signal_connect(handle->area, "draw", G_CALLBACK(onDraw), handle);
}

// --- Messages ----------------------------------------------------------------

void showGtkMessage(const char* text, const char* caption, int32_t flags)
{
    GtkMessageType type = flags == KErrorHandler::kFatalBoxFlags ? GTK_MESSAGE_ERROR : GTK_MESSAGE_INFO;
    std::string body = kToUtf8(text);
    GtkWidget* dialog = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, type, GTK_BUTTONS_OK, "%s", body.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), kToUtf8(caption).c_str());
    gtk_window_set_keep_above(GTK_WINDOW(dialog), TRUE);
    KEvent::setNativeModalWindow(dialog);
    gtk_dialog_run(GTK_DIALOG(dialog));
    KEvent::setNativeModalWindow(nullptr);
    gtk_widget_destroy(dialog);
}

} // namespace

KGtkNativeLayer::KGtkNativeLayer() = default;

KGtkNativeLayer::~KGtkNativeLayer() = default;

// The program places palettes and reads the pointer, which only X11 allows.
bool KGtkNativeLayer::initialize()
{
    gdk_set_allowed_backends("x11");
    display = gtk_init_check(nullptr, nullptr);
    if (display)
        KErrorHandler::setMessageProc(&showGtkMessage);
    return KGLibNativeLayer::initialize();
}

void KGtkNativeLayer::shutDown()
{
    if (display)
        KErrorHandler::setMessageProc(nullptr);
    KGLibNativeLayer::shutDown();
}

int32_t KGtkNativeLayer::modifierState() const
{
    if (!display)
        return 0;
    GdkKeymap* keymap = gdk_keymap_get_for_display(gdk_display_get_default());
    guint state = gdk_keymap_get_modifier_state(keymap);
    int32_t flags = 0;
    if (state & GDK_SHIFT_MASK)
        flags |= 1;
    if (state & GDK_CONTROL_MASK)
        flags |= 2;
    if (gdk_keymap_get_caps_lock_state(keymap))
        flags |= 4;
    if (gdk_keymap_get_num_lock_state(keymap))
        flags |= 8;
    return flags;
}

void KGtkNativeLayer::notePointer(int32_t x, int32_t y)
{
    pointerX = x;
    pointerY = y;
    pointerKnown = true;
    pointerTime = now();
}

bool KGtkNativeLayer::cursorPosition(int32_t& x, int32_t& y)
{
    if (!display)
        return false;
    if (!pointerKnown || kTimeDifference(now(), pointerTime) >= kPointerQueryPeriod) {
        GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
        GdkDevice* pointer = seat ? gdk_seat_get_pointer(seat) : nullptr;
        if (!pointer)
            return false;
        gint px = 0;
        gint py = 0;
        gdk_device_get_position(pointer, nullptr, &px, &py);
        notePointer(px, py);
    }
    x = pointerX;
    y = pointerY;
    return true;
}

void* KGtkNativeLayer::openWindow(KWindow& owner, const char* title, int32_t width, int32_t height)
{
    if (!display)
        return KGLibNativeLayer::openWindow(owner, title, width, height);
    auto* handle = new GtkWindowHandle();
    handle->layer = this;
    handle->owner = &owner;
    handle->window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    handle->area = gtk_drawing_area_new();
    gtk_widget_set_can_focus(handle->area, TRUE);
    gtk_container_add(GTK_CONTAINER(handle->window), handle->area);
    gtk_window_set_title(GTK_WINDOW(handle->window), kToUtf8(title).c_str());
    gtk_window_set_default_size(GTK_WINDOW(handle->window), width, height);
    connectWindowProcedure(handle);
    gtk_widget_show(handle->area);
    return handle;
}

void KGtkNativeLayer::closeWindow(void* handle)
{
    if (!display) {
        KGLibNativeLayer::closeWindow(handle);
        return;
    }
    auto* gtkHandle = static_cast<GtkWindowHandle*>(handle);
    gtkHandle->owner = nullptr;
    g_signal_handlers_disconnect_by_data(gtkHandle->window, gtkHandle);
    g_signal_handlers_disconnect_by_data(gtkHandle->area, gtkHandle);
    // A focus-out may have queued the activation check with this handle.
    while (g_idle_remove_by_data(gtkHandle)) { }
    gtk_widget_destroy(gtkHandle->window);
    delete gtkHandle;
}

void KGtkNativeLayer::showWindow(void* handle, bool visible)
{
    if (!display)
        return;
    auto* gtkHandle = static_cast<GtkWindowHandle*>(handle);
    if (visible)
        gtk_window_present(GTK_WINDOW(gtkHandle->window));
    else
        gtk_widget_hide(gtkHandle->window);
}

void KGtkNativeLayer::setWindowTitle(void* handle, const char* title)
{
    if (!display)
        return;
    gtk_window_set_title(GTK_WINDOW(static_cast<GtkWindowHandle*>(handle)->window), kToUtf8(title).c_str());
}

GtkWidget* KGtkNativeLayer::gtkWindowOf(void* handle) const
{
    if (!display || !handle)
        return nullptr;
    return static_cast<GtkWindowHandle*>(handle)->window;
}
