#include "windowing/native/KGtkNativeLayer.h"

#include "graphics/native/KNativeDevice.h"
#include "kernel/KErrorHandler.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KWindow.h"
#include "windowing/native/KGtkAccessible.h"
#include "windowing/native/KGtkDialogs.h"
#include "windowing/native/KGtkKeys.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <algorithm>

namespace {

// The pointer is asked of the X server at most this often; motion events
// keep it current in between. While it rests, each answer that finds it
// where it was doubles the period up to the longest, so that a program
// left alone does not ask fifty times a second.
constexpr int32_t kPointerQueryPeriod = 20;
constexpr int32_t kRestingPointerQueryPeriod = 320;

KNativeRecord recordFor(KGtkWindowHandle* handle, int32_t message, int32_t param1 = 0, int32_t param2 = 0)
{
    KNativeRecord record;
    record.window = handle->owner;
    record.message = message;
    record.param1 = param1;
    record.param2 = param2;
    record.time = handle->layer->now();
    return record;
}

KEventReturn deliver(KGtkWindowHandle* handle, int32_t message, int32_t param1 = 0, int32_t param2 = 0)
{
    if (!handle->owner)
        return 0;
    return kksDeliverNativeRecord(recordFor(handle, message, param1, param2));
}

// --- Window procedure ------------------------------------------------------

gboolean onDelete(GtkWidget*, GdkEvent*, gpointer data)
{
    deliver(static_cast<KGtkWindowHandle*>(data), KNativeMessage::Close);
    // The framework decides: a close it agrees to destroys the window.
    return TRUE;
}

// A move reports where the client area's origin lies on the screen.
gboolean onConfigure(GtkWidget*, GdkEventConfigure* event, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    if (event->x != handle->lastX || event->y != handle->lastY) {
        handle->lastX = event->x;
        handle->lastY = event->y;
        // The client area stands below the menu strip.
        deliver(handle, KNativeMessage::Move, event->x, event->y + kGtkMenuStripHeight(*handle));
    }
    return FALSE;
}

// A resize reports the drawing area's size, which is the back buffer's.
void onAllocate(GtkWidget*, GdkRectangle* allocation, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    if (allocation->width == handle->lastWidth && allocation->height == handle->lastHeight)
        return;
    handle->lastWidth = allocation->width;
    handle->lastHeight = allocation->height;
    deliver(handle, KNativeMessage::Size, allocation->width, allocation->height);
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
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    KNativeRecord record = recordFor(handle, KNativeMessage::ActivateApp, anyWindowActive() ? 1 : 0);
    record.window = nullptr;
    kksDeliverNativeRecord(record);
    return G_SOURCE_REMOVE;
}

gboolean onFocusIn(GtkWidget*, GdkEventFocus*, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    KNativeRecord appRecord = recordFor(handle, KNativeMessage::ActivateApp, 1);
    appRecord.window = nullptr;
    kksDeliverNativeRecord(appRecord);
    deliver(handle, KNativeMessage::Activate, 1);
    return FALSE;
}

gboolean onFocusOut(GtkWidget*, GdkEventFocus*, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    // Keys let go elsewhere are never reported here.
    handle->heldKeys.clear();
    deliver(handle, KNativeMessage::Activate, 0);
    g_idle_add(&settleApplicationActivation, handle);
    return FALSE;
}

bool isReturn(guint keyval)
{
    return keyval == GDK_KEY_Return || keyval == GDK_KEY_KP_Enter || keyval == GDK_KEY_ISO_Enter;
}

// A control that takes keys itself (a text field, a list, a slider) gets
// them first while it has GTK's focus. Tab and Escape always belong to the
// framework, and so does Return unless the control is a multi-line text:
// they move the focus and answer the dialog's buttons.
bool offerToFocusControl(KGtkWindowHandle* handle, GdkEventKey* event)
{
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(handle->window));
    // A styled text field stands over the page beside the layer of controls.
    if (!focus || focus == handle->area || !gtk_widget_is_ancestor(focus, handle->overlay))
        return false;
    guint keyval = event->keyval;
    if (keyval == GDK_KEY_Tab || keyval == GDK_KEY_ISO_Left_Tab || keyval == GDK_KEY_KP_Tab || keyval == GDK_KEY_Escape)
        return false;
    if (isReturn(keyval) && !GTK_IS_TEXT_VIEW(focus)) {
        kGtkCommitTypedValue(*handle);
        return false;
    }
    return gtk_window_propagate_key_event(GTK_WINDOW(handle->window), event);
}

// Accelerators come first; a key they take makes no key event. A press of
// a key already held is the keyboard's auto-repeat: with detectable
// auto-repeat X sends no release in between.
// Shift and Control as the key event carries them, for the time of its
// delivery.
class EventModifiers {
public:
    EventModifiers(KGtkNativeLayer* layer, guint state)
        : layer(layer)
    {
        layer->setEventModifiers(((state & GDK_SHIFT_MASK) ? 1 : 0) | ((state & GDK_CONTROL_MASK) ? 2 : 0));
    }
    ~EventModifiers() { layer->setEventModifiers(-1); }
    EventModifiers(const EventModifiers&) = delete;
    EventModifiers& operator=(const EventModifiers&) = delete;

private:
    KGtkNativeLayer* layer;
};

gboolean onKeyPress(GtkWidget* widget, GdkEventKey* event, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    if (gtk_window_activate_key(GTK_WINDOW(widget), event))
        return TRUE;
    auto held = handle->heldKeys.find(event->hardware_keycode);
    bool repeat = held != handle->heldKeys.end();
    if (offerToFocusControl(handle, event)) {
        if (!repeat)
            handle->heldKeys[event->hardware_keycode] = KGtkHeldKey();
        return TRUE;
    }
    KGtkHeldKey key;
    key.virtualKey = kGtkVirtualKey(event->keyval);
    key.character = kGtkCharacter(event->keyval, event->state);
    // Ctrl+W is a key of its own, made from the key-down.
    if (key.virtualKey == 'W' && (event->state & GDK_CONTROL_MASK))
        key.character = 0;
    key.delivered = true;
    int32_t flags = repeat ? KKeyRecord::Repeat : 0;
    EventModifiers modifiers(handle->layer, event->state);
    if (key.virtualKey != 0)
        deliver(handle, KNativeMessage::KeyDown, key.virtualKey, flags);
    if (key.character >= 32)
        deliver(handle, KNativeMessage::Char, key.character, flags);
    handle->heldKeys[event->hardware_keycode] = key;
    return TRUE;
}

gboolean onKeyRelease(GtkWidget*, GdkEventKey* event, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    auto held = handle->heldKeys.find(event->hardware_keycode);
    if (held == handle->heldKeys.end())
        return TRUE;
    KGtkHeldKey key = held->second;
    handle->heldKeys.erase(held);
    if (!key.delivered) {
        gtk_window_propagate_key_event(GTK_WINDOW(handle->window), event);
        return TRUE;
    }
    EventModifiers modifiers(handle->layer, event->state);
    if (key.virtualKey != 0 || key.character >= 32)
        deliver(handle, KNativeMessage::KeyUp, key.virtualKey, key.character);
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

KEventReturn deliverMouse(KGtkWindowHandle* handle, int32_t message, int32_t keys, double x, double y, double rootX,
                          double rootY)
{
    if (!handle->owner)
        return 0;
    KNativeRecord record
        = recordFor(handle, message, keys, kPackPoint(static_cast<int32_t>(x), static_cast<int32_t>(y)));
    record.x = static_cast<int32_t>(rootX);
    record.y = static_cast<int32_t>(rootY);
    handle->layer->notePointer(record.x, record.y);
    return kksDeliverNativeRecord(record);
}

// GTK reports the button state before the change; the records carry it
// after, as the translator expects. GTK's own double and triple clicks are
// dropped: the framework tells double clicks itself.
gboolean onButtonPress(GtkWidget* widget, GdkEventButton* event, gpointer data)
{
    if (event->type != GDK_BUTTON_PRESS)
        return TRUE;
    // A press on the page takes the keys back from a control.
    gtk_widget_grab_focus(widget);
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
    deliverMouse(static_cast<KGtkWindowHandle*>(data), message, keys, event->x, event->y, event->x_root, event->y_root);
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
    deliverMouse(static_cast<KGtkWindowHandle*>(data), message, keys, event->x, event->y, event->x_root, event->y_root);
    return TRUE;
}

gboolean onMotion(GtkWidget*, GdkEventMotion* event, gpointer data)
{
    deliverMouse(static_cast<KGtkWindowHandle*>(data), KNativeMessage::MouseMove, mouseKeys(event->state), event->x,
                 event->y, event->x_root, event->y_root);
    return TRUE;
}

// Another grab took the mouse while a button was down (the implicit grab
// of the press is broken): the release will not come, and the translator
// makes it up at the pointer's place.
gboolean onGrabBroken(GtkWidget* widget, GdkEvent*, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    GdkWindow* window = gtk_widget_get_window(widget);
    GdkSeat* seat = gdk_display_get_default_seat(gtk_widget_get_display(widget));
    GdkDevice* pointer = seat ? gdk_seat_get_pointer(seat) : nullptr;
    double x = 0;
    double y = 0;
    gint rootX = 0;
    gint rootY = 0;
    if (window && pointer) {
        gdk_window_get_device_position_double(window, pointer, &x, &y, nullptr);
        gdk_device_get_position(pointer, nullptr, &rootX, &rootY);
    }
    deliverMouse(handle, KNativeMessage::CaptureChanged, 0, x, y, rootX, rootY);
    return FALSE;
}

// Every motion counts: a fast stroke must keep all of its points, so GDK
// may not fold queued moves into the last one.
void onRealize(GtkWidget* widget, gpointer)
{
    if (GdkWindow* window = gtk_widget_get_window(widget))
        gdk_window_set_event_compression(window, FALSE);
}

// The window paints into its back buffer, which is then shown.
gboolean onDraw(GtkWidget*, cairo_t* cr, gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    deliver(handle, KNativeMessage::Paint);
    KNativeDevice* device = handle->owner ? handle->owner->getNativeDevice() : nullptr;
    cairo_surface_t* surface = device ? device->getSurface() : nullptr;
    if (surface) {
        cairo_surface_flush(surface);
        cairo_set_source_surface(cr, surface, 0, 0);
    } else {
        cairo_set_source_rgb(cr, 0, 0, 0);
    }
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    return TRUE;
}

// Only the first file of a drop counts; it comes as a DropFiles record.
void onDragData(GtkWidget*, GdkDragContext* context, gint, gint, GtkSelectionData* selection, guint, guint time,
                gpointer data)
{
    auto* handle = static_cast<KGtkWindowHandle*>(data);
    std::vector<std::string> files;
    gchar** uris = gtk_selection_data_get_uris(selection);
    for (gchar** uri = uris; uri && *uri; ++uri) {
        gchar* file = g_filename_from_uri(*uri, nullptr, nullptr);
        if (!file)
            continue;
        gchar* utf8 = g_filename_to_utf8(file, -1, nullptr, nullptr, nullptr);
        if (utf8)
            files.push_back(kFromUtf8(utf8));
        g_free(utf8);
        g_free(file);
    }
    g_strfreev(uris);
    gtk_drag_finish(context, !files.empty(), FALSE, time);
    if (!files.empty())
        deliver(handle, KNativeMessage::DropFiles, handle->layer->noteDrop(files));
}

void connectWindowProcedure(KGtkWindowHandle* handle)
{
    g_signal_connect(handle->window, "delete-event", G_CALLBACK(onDelete), handle);
    g_signal_connect(handle->window, "configure-event", G_CALLBACK(onConfigure), handle);
    g_signal_connect(handle->window, "focus-in-event", G_CALLBACK(onFocusIn), handle);
    g_signal_connect(handle->window, "focus-out-event", G_CALLBACK(onFocusOut), handle);
    g_signal_connect(handle->window, "key-press-event", G_CALLBACK(onKeyPress), handle);
    g_signal_connect(handle->window, "key-release-event", G_CALLBACK(onKeyRelease), handle);
    g_signal_connect(handle->window, "realize", G_CALLBACK(onRealize), handle);
    g_signal_connect(handle->area, "realize", G_CALLBACK(onRealize), handle);
    gtk_widget_add_events(handle->area, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK);
    g_signal_connect(handle->area, "button-press-event", G_CALLBACK(onButtonPress), handle);
    g_signal_connect(handle->area, "button-release-event", G_CALLBACK(onButtonRelease), handle);
    g_signal_connect(handle->area, "motion-notify-event", G_CALLBACK(onMotion), handle);
    g_signal_connect(handle->area, "grab-broken-event", G_CALLBACK(onGrabBroken), handle);
    g_signal_connect(handle->area, "draw", G_CALLBACK(onDraw), handle);
    g_signal_connect(handle->area, "size-allocate", G_CALLBACK(onAllocate), handle);
    gtk_drag_dest_set(handle->area, GTK_DEST_DEFAULT_ALL, nullptr, 0, GDK_ACTION_COPY);
    gtk_drag_dest_add_uri_targets(handle->area);
    g_signal_connect(handle->area, "drag-data-received", G_CALLBACK(onDragData), handle);
}

// --- Frames ------------------------------------------------------------------

void styleFrame(KGtkWindowHandle* handle, const KNativeWindowSetup& setup, GtkWidget* parent)
{
    GtkWindow* window = GTK_WINDOW(handle->window);
    switch (setup.kind) {
    case KNativeWindowKind::Palette:
        gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_UTILITY);
        gtk_window_set_skip_taskbar_hint(window, TRUE);
        gtk_window_set_skip_pager_hint(window, TRUE);
        gtk_window_set_focus_on_map(window, FALSE);
        // A click on a palette's button must leave the keys with the page.
        gtk_window_set_accept_focus(window, FALSE);
        break;
    case KNativeWindowKind::Dialog:
        gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_DIALOG);
        gtk_window_set_skip_taskbar_hint(window, TRUE);
        break;
    default:
        break;
    }
    if (parent && setup.kind != KNativeWindowKind::Normal)
        gtk_window_set_transient_for(window, GTK_WINDOW(parent));
    gtk_window_set_deletable(window, setup.closable);
    gtk_window_set_resizable(window, setup.resizable);
    gtk_window_set_title(window, kToUtf8(setup.title.c_str()).c_str());
}

void sizeFrame(KGtkWindowHandle* handle, const KNativeRect& client)
{
    handle->client = client;
    int32_t width = std::max(client.width, 1);
    int32_t height = std::max(client.height, 1);
    if (handle->resizable) {
        // The window holds the menu strip above the client area.
        height += kGtkMenuStripHeight(*handle);
        gtk_window_set_default_size(GTK_WINDOW(handle->window), width, height);
        gtk_window_resize(GTK_WINDOW(handle->window), width, height);
    } else {
        gtk_widget_set_size_request(handle->area, width, height);
    }
}

} // namespace

void kGtkRefitFrame(KGtkWindowHandle& window)
{
    if (window.client.width > 0 && window.client.height > 0)
        sizeFrame(&window, window.client);
}

KGtkNativeLayer::KGtkNativeLayer() = default;

KGtkNativeLayer::~KGtkNativeLayer()
{
    if (display)
        connectClipboard(false);
}

// The program places palettes and reads the pointer, which only X11 allows.
bool KGtkNativeLayer::initialize()
{
    gdk_set_allowed_backends("x11");
    display = gtk_init_check(nullptr, nullptr);
    if (display) {
        installGtkMessageProc(true);
        connectClipboard(true);
    }
    return KGLibNativeLayer::initialize();
}

void KGtkNativeLayer::shutDown()
{
    if (display) {
        installGtkMessageProc(false);
        connectClipboard(false);
    }
    KGLibNativeLayer::shutDown();
}

int32_t KGtkNativeLayer::modifierState() const
{
    if (!display)
        return 0;
    GdkKeymap* keymap = gdk_keymap_get_for_display(gdk_display_get_default());
    int32_t flags = eventModifiers;
    if (flags < 0) {
        guint state = gdk_keymap_get_modifier_state(keymap);
        flags = 0;
        if (state & GDK_SHIFT_MASK)
            flags |= 1;
        if (state & GDK_CONTROL_MASK)
            flags |= 2;
    }
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
    pointerQueryPeriod = kPointerQueryPeriod;
}

bool KGtkNativeLayer::cursorPosition(int32_t& x, int32_t& y)
{
    if (!display)
        return false;
    if (!pointerKnown || kTimeDifference(now(), pointerTime) >= pointerQueryPeriod) {
        GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
        GdkDevice* pointer = seat ? gdk_seat_get_pointer(seat) : nullptr;
        if (!pointer)
            return false;
        gint px = 0;
        gint py = 0;
        gdk_device_get_position(pointer, nullptr, &px, &py);
        bool resting = pointerKnown && px == pointerX && py == pointerY;
        int32_t period = resting ? std::min(2 * pointerQueryPeriod, kRestingPointerQueryPeriod) : kPointerQueryPeriod;
        notePointer(px, py);
        pointerQueryPeriod = period;
    }
    x = pointerX;
    y = pointerY;
    return true;
}

int32_t KGtkNativeLayer::doubleClickTime() const
{
    if (!display)
        return KGLibNativeLayer::doubleClickTime();
    gint time = 0;
    g_object_get(gtk_settings_get_default(), "gtk-double-click-time", &time, nullptr);
    return time;
}

int32_t KGtkNativeLayer::doubleClickDistance() const
{
    if (!display)
        return KGLibNativeLayer::doubleClickDistance();
    gint distance = 0;
    g_object_get(gtk_settings_get_default(), "gtk-double-click-distance", &distance, nullptr);
    return distance;
}

void KGtkNativeLayer::screenSize(int32_t& width, int32_t& height) const
{
    GdkDisplay* gdkDisplay = display ? gdk_display_get_default() : nullptr;
    GdkMonitor* monitor = gdkDisplay ? gdk_display_get_primary_monitor(gdkDisplay) : nullptr;
    if (!monitor && gdkDisplay)
        monitor = gdk_display_get_monitor(gdkDisplay, 0);
    if (!monitor) {
        KGLibNativeLayer::screenSize(width, height);
        return;
    }
    GdkRectangle geometry;
    gdk_monitor_get_geometry(monitor, &geometry);
    width = geometry.width;
    height = geometry.height;
}

// --- Windows -------------------------------------------------------------------

void* KGtkNativeLayer::openWindow(KWindow& owner, const KNativeWindowSetup& setup)
{
    if (!display)
        return KGLibNativeLayer::openWindow(owner, setup);
    auto* handle = new KGtkWindowHandle();
    handle->layer = this;
    handle->owner = &owner;
    handle->kind = setup.kind;
    handle->resizable = setup.resizable;
    handle->window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    handle->overlay = gtk_overlay_new();
    handle->area = kGtkCanvasNew();
    handle->fixed = gtk_fixed_new();
    gtk_widget_set_can_focus(handle->area, TRUE);
    gtk_container_add(GTK_CONTAINER(handle->overlay), handle->area);
    gtk_overlay_add_overlay(GTK_OVERLAY(handle->overlay), handle->fixed);
    gtk_overlay_set_overlay_pass_through(GTK_OVERLAY(handle->overlay), handle->fixed, TRUE);
    handle->box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_pack_end(GTK_BOX(handle->box), handle->overlay, TRUE, TRUE, 0);
    gtk_container_add(GTK_CONTAINER(handle->window), handle->box);
    styleFrame(handle, setup, gtkWindowOf(setup.parent));
    sizeFrame(handle, setup.client);
    if (setup.centreOnParent && setup.parent)
        gtk_window_set_position(GTK_WINDOW(handle->window), GTK_WIN_POS_CENTER_ON_PARENT);
    else
        gtk_window_move(GTK_WINDOW(handle->window), setup.client.x, setup.client.y);
    connectWindowProcedure(handle);
    gtk_widget_show_all(handle->box);
    handles.push_back(handle);
    return handle;
}

void KGtkNativeLayer::closeWindow(void* handle)
{
    if (!display) {
        KGLibNativeLayer::closeWindow(handle);
        return;
    }
    auto* gtkHandle = static_cast<KGtkWindowHandle*>(handle);
    handles.erase(std::remove(handles.begin(), handles.end(), gtkHandle), handles.end());
    gtkHandle->owner = nullptr;
    g_signal_handlers_disconnect_by_data(gtkHandle->window, gtkHandle);
    g_signal_handlers_disconnect_by_data(gtkHandle->area, gtkHandle);
    // A focus-out may have queued the activation check with this handle.
    while (g_idle_remove_by_data(gtkHandle)) { }
    kGtkDestroyMenuStrip(*gtkHandle);
    gtk_widget_destroy(gtkHandle->window);
    delete gtkHandle;
}

// A palette appears without taking the focus from the window it serves.
void KGtkNativeLayer::showWindow(void* handle, bool visible)
{
    if (!display)
        return;
    auto* gtkHandle = static_cast<KGtkWindowHandle*>(handle);
    if (!visible) {
        gtk_widget_hide(gtkHandle->window);
        return;
    }
    if (gtkHandle->kind == KNativeWindowKind::Palette)
        gtk_widget_show(gtkHandle->window);
    else
        gtk_window_present(GTK_WINDOW(gtkHandle->window));
    applyCursor(*gtkHandle);
}

void KGtkNativeLayer::setWindowTitle(void* handle, const char* title)
{
    if (!display)
        return;
    gtk_window_set_title(GTK_WINDOW(static_cast<KGtkWindowHandle*>(handle)->window), kToUtf8(title).c_str());
}

void KGtkNativeLayer::setWindowBounds(void* handle, const KNativeRect& client)
{
    if (!display)
        return;
    auto* gtkHandle = static_cast<KGtkWindowHandle*>(handle);
    gtk_window_move(GTK_WINDOW(gtkHandle->window), client.x, client.y - kGtkMenuStripHeight(*gtkHandle));
    sizeFrame(gtkHandle, client);
}

// Raising each window in turn, back to front, leaves the last in front,
// with or without a window manager.
void KGtkNativeLayer::restackWindows(const std::vector<void*>& backToFront)
{
    if (!display)
        return;
    for (void* handle : backToFront) {
        GdkWindow* window = gtk_widget_get_window(static_cast<KGtkWindowHandle*>(handle)->window);
        if (window)
            gdk_window_raise(window);
    }
}

void KGtkNativeLayer::setWindowEnabled(void* handle, bool enabled)
{
    if (display)
        gtk_widget_set_sensitive(static_cast<KGtkWindowHandle*>(handle)->box, enabled);
}

void KGtkNativeLayer::setWindowModal(void* handle, bool modal)
{
    if (display)
        gtk_window_set_modal(GTK_WINDOW(static_cast<KGtkWindowHandle*>(handle)->window), modal);
}

void KGtkNativeLayer::invalidateWindow(void* handle, const KNativeRect& area)
{
    if (display)
        gtk_widget_queue_draw_area(static_cast<KGtkWindowHandle*>(handle)->area, area.x, area.y, area.width,
                                   area.height);
}

void KGtkNativeLayer::setAccessibleControls(void* handle, const std::vector<KNativeAccessible>& controls)
{
    if (display)
        kGtkSetAccessibleControls(static_cast<KGtkWindowHandle*>(handle)->area, controls);
}

void KGtkNativeLayer::setWindowTooltip(void* handle, const char* text)
{
    if (!display)
        return;
    GtkWidget* area = static_cast<KGtkWindowHandle*>(handle)->area;
    if (text && *text)
        gtk_widget_set_tooltip_text(area, kToUtf8(text).c_str());
    else
        gtk_widget_set_has_tooltip(area, FALSE);
}

GtkWidget* KGtkNativeLayer::gtkWindowOf(void* handle) const
{
    if (!display || !handle)
        return nullptr;
    return static_cast<KGtkWindowHandle*>(handle)->window;
}

GtkWidget* KGtkNativeLayer::gtkAreaOf(void* handle) const
{
    if (!display || !handle)
        return nullptr;
    return static_cast<KGtkWindowHandle*>(handle)->area;
}

GtkWidget* KGtkNativeLayer::dialogParent() const
{
    for (KGtkWindowHandle* handle : handles) {
        if (gtk_window_is_active(GTK_WINDOW(handle->window)))
            return handle->window;
    }
    for (auto it = handles.rbegin(); it != handles.rend(); ++it) {
        if (gtk_widget_get_visible((*it)->window))
            return (*it)->window;
    }
    return nullptr;
}

int32_t KGtkNativeLayer::noteDrop(const std::vector<std::string>& files)
{
    drops.push_back(files);
    return static_cast<int32_t>(drops.size()) - 1;
}

bool KGtkNativeLayer::droppedFile(int32_t drop, char* buffer, int32_t size)
{
    if (drop < 0 || drop >= static_cast<int32_t>(drops.size()) || drops[size_t(drop)].empty() || size <= 0)
        return false;
    g_strlcpy(buffer, drops[size_t(drop)].front().c_str(), size_t(size));
    return true;
}

// --- Cursor ---------------------------------------------------------------------

void KGtkNativeLayer::applyCursor(KGtkWindowHandle& handle) const
{
    GdkWindow* window = gtk_widget_get_window(handle.area);
    if (!window)
        return;
    const char* name = "default";
    if (!cursorVisible) {
        name = "none";
    } else {
        switch (cursorShape) {
        case KCursorShape::Wait:
            name = "wait";
            break;
        case KCursorShape::Cross:
            name = "crosshair";
            break;
        case KCursorShape::Hand:
            name = "pointer";
            break;
        case KCursorShape::Text:
            name = "text";
            break;
        default:
            break;
        }
    }
    GdkCursor* cursor = gdk_cursor_new_from_name(gdk_window_get_display(window), name);
    gdk_window_set_cursor(window, cursor);
    if (cursor)
        g_object_unref(cursor);
}

void KGtkNativeLayer::setCursorShape(KCursorShape shape)
{
    cursorShape = shape;
    if (!display)
        return;
    for (KGtkWindowHandle* handle : handles)
        applyCursor(*handle);
}

void KGtkNativeLayer::setCursorVisible(bool visible)
{
    cursorVisible = visible;
    if (!display)
        return;
    for (KGtkWindowHandle* handle : handles)
        applyCursor(*handle);
}
