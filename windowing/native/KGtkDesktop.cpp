// The GTK layer's part of the desktop: full screen, the work area and the
// recent files.

#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <gtk/gtk.h>

namespace {

GdkMonitor* primaryMonitor()
{
    GdkDisplay* display = gdk_display_get_default();
    if (!display)
        return nullptr;
    GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
    return monitor ? monitor : gdk_display_get_monitor(display, 0);
}

} // namespace

void KGtkNativeLayer::setWindowFullScreen(void* handle, bool fullScreen)
{
    auto* window = static_cast<KGtkWindowHandle*>(handle);
    if (!window || !window->window || !GTK_IS_WINDOW(window->window))
        return;
    GtkWindow* gtkWindow = GTK_WINDOW(window->window);
    if (fullScreen) {
        gtk_window_set_decorated(gtkWindow, FALSE);
        gtk_window_fullscreen(gtkWindow);
    } else {
        gtk_window_unfullscreen(gtkWindow);
        gtk_window_set_decorated(gtkWindow, TRUE);
    }
}

KNativeRect KGtkNativeLayer::workArea() const
{
    GdkMonitor* monitor = primaryMonitor();
    if (!monitor)
        return KNativeLayer::workArea();
    GdkRectangle area;
    gdk_monitor_get_workarea(monitor, &area);
    KNativeRect result;
    result.x = area.x;
    result.y = area.y;
    result.width = area.width;
    result.height = area.height;
    return result;
}

void KGtkNativeLayer::addRecentFile(const char* path)
{
    if (!path || !*path || !gdk_display_get_default())
        return;
    gchar* uri = g_filename_to_uri(path, nullptr, nullptr);
    if (!uri)
        return;
    gtk_recent_manager_add_item(gtk_recent_manager_get_default(), uri);
    g_free(uri);
}
