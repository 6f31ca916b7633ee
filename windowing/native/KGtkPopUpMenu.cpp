#include "windowing/KEvent.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <gtk/gtk.h>

namespace {

constexpr const char* kItemNumber = "taleloom-item";

// One showing of a menu: its loop and the item the user chose.
struct MenuRun {
    GMainLoop* loop = nullptr;
    int32_t chosen = 0;
};

void onActivate(GtkMenuItem* item, gpointer data)
{
    static_cast<MenuRun*>(data)->chosen = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(item), kItemNumber));
}

// The item's activation comes after the menu closes: the loop ends on the
// next idle turn, once it was told.
gboolean quitRun(gpointer data)
{
    g_main_loop_quit(static_cast<MenuRun*>(data)->loop);
    return G_SOURCE_REMOVE;
}

void onDeactivate(GtkMenuShell*, gpointer data) { g_idle_add(&quitRun, data); }

GtkWidget* buildMenu(const std::vector<KNativeMenuItem>& items, MenuRun& run);

GtkWidget* buildItem(const KNativeMenuItem& item, MenuRun& run)
{
    if (item.separator)
        return gtk_separator_menu_item_new();
    std::string label = kToUtf8(item.text.c_str());
    GtkWidget* widget = nullptr;
    if (item.checkable) {
        widget = gtk_check_menu_item_new_with_label(label.c_str());
        // Set before listening: setting it activates the item.
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(widget), item.checked);
    } else {
        widget = gtk_menu_item_new_with_label(label.c_str());
    }
    gtk_widget_set_sensitive(widget, item.enabled);
    if (!item.children.empty()) {
        gtk_menu_item_set_submenu(GTK_MENU_ITEM(widget), buildMenu(item.children, run));
        return widget;
    }
    g_object_set_data(G_OBJECT(widget), kItemNumber, GINT_TO_POINTER(item.id));
    g_signal_connect(widget, "activate", G_CALLBACK(onActivate), &run);
    return widget;
}

GtkWidget* buildMenu(const std::vector<KNativeMenuItem>& items, MenuRun& run)
{
    GtkWidget* menu = gtk_menu_new();
    for (const KNativeMenuItem& item : items)
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), buildItem(item, run));
    return menu;
}

// While the menu runs its own loop, every framework event is refused as
// handled, as for a native dialog.
class MenuModalGuard {
public:
    explicit MenuModalGuard(GtkWidget* menu) { KEvent::setNativeModalWindow(menu); }
    ~MenuModalGuard() { KEvent::setNativeModalWindow(nullptr); }
    MenuModalGuard(const MenuModalGuard&) = delete;
    MenuModalGuard& operator=(const MenuModalGuard&) = delete;
};

} // namespace

int32_t KGtkNativeLayer::popUpMenu(void* window, const std::vector<KNativeMenuItem>& items, int32_t x, int32_t y)
{
    auto* handle = static_cast<KGtkWindowHandle*>(window);
    GdkWindow* place = handle && handle->area ? gtk_widget_get_window(handle->area) : nullptr;
    if (!hasDisplay() || !place || items.empty())
        return 0;
    MenuRun run;
    run.loop = g_main_loop_new(nullptr, FALSE);
    GtkWidget* menu = buildMenu(items, run);
    g_object_ref_sink(menu);
    gtk_widget_show_all(menu);
    g_signal_connect(menu, "deactivate", G_CALLBACK(onDeactivate), &run);
    GdkRectangle at { x, y, 1, 1 };
    {
        MenuModalGuard guard(menu);
        gtk_menu_popup_at_rect(GTK_MENU(menu), place, &at, GDK_GRAVITY_NORTH_WEST, GDK_GRAVITY_NORTH_WEST, nullptr);
        if (gtk_widget_get_visible(menu))
            g_main_loop_run(run.loop);
    }
    g_signal_handlers_disconnect_by_data(menu, &run);
    gtk_widget_destroy(menu);
    g_object_unref(menu);
    g_main_loop_unref(run.loop);
    return run.chosen;
}
