// The menu strip of a window: a GtkMenuBar above the client area, with a
// GtkAccelGroup on the window for the accelerators.

#include "windowing/KEvent.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KNativeRecord.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <gtk/gtk.h>

#include <deque>
#include <map>
#include <set>

struct KGtkMenuStrip {
    KGtkWindowHandle* window = nullptr;
    GtkWidget* bar = nullptr;
    GtkAccelGroup* accels = nullptr;
    std::map<int32_t, GtkWidget*> items;
    std::set<guint> keys;
    // Chosen items waiting for GTK to finish closing the menus.
    std::deque<int32_t> chosen;
    bool shown = true;
    // Set while the program changes the items: a check item set by the
    // program activates itself, which is no choice of the user.
    bool updating = false;
};

namespace {

constexpr const char* kCommand = "taleloom-command";

class UpdatingGuard {
public:
    explicit UpdatingGuard(KGtkMenuStrip& strip)
        : strip(strip)
    {
        strip.updating = true;
    }
    ~UpdatingGuard() { strip.updating = false; }
    UpdatingGuard(const UpdatingGuard&) = delete;
    UpdatingGuard& operator=(const UpdatingGuard&) = delete;

private:
    KGtkMenuStrip& strip;
};

void deliverMenu(KGtkMenuStrip* strip, int32_t message, int32_t param1, int32_t param2 = 0)
{
    KGtkWindowHandle* window = strip->window;
    if (!window || !window->owner)
        return;
    KNativeRecord record;
    record.window = window->owner;
    record.message = message;
    record.param1 = param1;
    record.param2 = param2;
    record.time = window->layer->now();
    kksDeliverNativeRecord(record);
}

int32_t commandOf(GtkWidget* item) { return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(item), kCommand)); }

// Runs the chosen items once GTK has closed the menus and let go of its
// grab: a command that opens a modal dialog would otherwise run its loop
// inside the menu's activation, under menus that can no longer close. The
// idle belongs to the window's handle, which drops it when it closes.
gboolean deliverChosen(gpointer data)
{
    auto* window = static_cast<KGtkWindowHandle*>(data);
    KGtkMenuStrip* strip = window->menuStrip;
    while (strip && !strip->chosen.empty()) {
        int32_t command = strip->chosen.front();
        strip->chosen.pop_front();
        deliverMenu(strip, KNativeMessage::Command, command);
        strip = window->menuStrip;
    }
    return G_SOURCE_REMOVE;
}

void onItemActivate(GtkMenuItem* item, gpointer data)
{
    auto* strip = static_cast<KGtkMenuStrip*>(data);
    if (strip->updating || gtk_menu_item_get_submenu(item) || !strip->window)
        return;
    if (strip->chosen.empty())
        g_idle_add(deliverChosen, strip->window);
    strip->chosen.push_back(commandOf(GTK_WIDGET(item)));
}

// A menu of the strip is selected just before its items drop down: they
// are brought up to date then.
void onMenuSelect(GtkMenuItem* item, gpointer data)
{
    auto* strip = static_cast<KGtkMenuStrip*>(data);
    if (!strip->updating)
        deliverMenu(strip, KNativeMessage::MenuPopup, commandOf(GTK_WIDGET(item)));
}

// Every accelerator is taken, whether its item is enabled or not: the
// program decides which item, if any, runs.
gboolean onAccelerator(GtkAccelGroup*, GObject*, guint keyval, GdkModifierType modifiers, gpointer data)
{
    auto* strip = static_cast<KGtkMenuStrip*>(data);
    guint key = gdk_keyval_to_unicode(gdk_keyval_to_upper(keyval));
    int32_t flags = ((modifiers & GDK_SHIFT_MASK) ? 1 : 0) | ((modifiers & GDK_CONTROL_MASK) ? 2 : 0);
    if (key != 0)
        deliverMenu(strip, KNativeMessage::Accelerator, int32_t(key), flags);
    return TRUE;
}

guint keyvalOf(int32_t accelerator)
{
    return gdk_unicode_to_keyval(
        guint(accelerator >= 'A' && accelerator <= 'Z' ? accelerator - 'A' + 'a' : accelerator));
}

void applyState(KGtkMenuStrip& strip, GtkWidget* widget, const KNativeMenuItem& item)
{
    std::string label = kToUtf8(item.text.c_str());
    if (label != (gtk_menu_item_get_label(GTK_MENU_ITEM(widget)) ? gtk_menu_item_get_label(GTK_MENU_ITEM(widget)) : ""))
        gtk_menu_item_set_label(GTK_MENU_ITEM(widget), label.c_str());
    gtk_widget_set_sensitive(widget, item.enabled);
    if (GTK_IS_CHECK_MENU_ITEM(widget)) {
        UpdatingGuard guard(strip);
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(widget), item.checked);
    }
}

GtkWidget* buildMenu(KGtkMenuStrip& strip, const std::vector<KNativeMenuItem>& items);

GtkWidget* buildItem(KGtkMenuStrip& strip, const KNativeMenuItem& item)
{
    if (item.separator)
        return gtk_separator_menu_item_new();
    GtkWidget* widget = nullptr;
    if (item.checkable) {
        widget = gtk_check_menu_item_new_with_label("");
        gtk_check_menu_item_set_draw_as_radio(GTK_CHECK_MENU_ITEM(widget), item.radio);
    } else {
        widget = gtk_menu_item_new_with_label("");
    }
    g_object_set_data(G_OBJECT(widget), kCommand, GINT_TO_POINTER(item.id));
    strip.items[item.id] = widget;
    applyState(strip, widget, item);
    if (!item.children.empty()) {
        gtk_menu_item_set_submenu(GTK_MENU_ITEM(widget), buildMenu(strip, item.children));
        return widget;
    }
    if (item.accelerator != 0) {
        guint keyval = keyvalOf(item.accelerator);
        GtkWidget* label = gtk_bin_get_child(GTK_BIN(widget));
        if (GTK_IS_ACCEL_LABEL(label))
            gtk_accel_label_set_accel(GTK_ACCEL_LABEL(label), keyval, GDK_CONTROL_MASK);
        if (strip.keys.insert(keyval).second)
            gtk_accel_group_connect(strip.accels, keyval, GDK_CONTROL_MASK, GtkAccelFlags(0),
                                    g_cclosure_new(G_CALLBACK(onAccelerator), &strip, nullptr));
    }
    g_signal_connect(widget, "activate", G_CALLBACK(onItemActivate), &strip);
    return widget;
}

GtkWidget* buildMenu(KGtkMenuStrip& strip, const std::vector<KNativeMenuItem>& items)
{
    GtkWidget* menu = gtk_menu_new();
    gtk_menu_set_accel_group(GTK_MENU(menu), strip.accels);
    for (const KNativeMenuItem& item : items)
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), buildItem(strip, item));
    return menu;
}

void updateItems(KGtkMenuStrip& strip, const std::vector<KNativeMenuItem>& items)
{
    for (const KNativeMenuItem& item : items) {
        if (item.separator)
            continue;
        auto found = strip.items.find(item.id);
        if (found != strip.items.end())
            applyState(strip, found->second, item);
        updateItems(strip, item.children);
    }
}

} // namespace

int32_t kGtkMenuStripHeight(const KGtkWindowHandle& window)
{
    if (!window.menuStrip || !window.menuStrip->shown)
        return 0;
    gint minimum = 0;
    gint natural = 0;
    gtk_widget_get_preferred_height(window.menuStrip->bar, &minimum, &natural);
    return natural;
}

void kGtkDestroyMenuStrip(KGtkWindowHandle& window)
{
    KGtkMenuStrip* strip = window.menuStrip;
    if (!strip)
        return;
    window.menuStrip = nullptr;
    gtk_window_remove_accel_group(GTK_WINDOW(window.window), strip->accels);
    // The closures point at the strip: they go before it does.
    for (guint keyval : strip->keys)
        gtk_accel_group_disconnect_key(strip->accels, keyval, GDK_CONTROL_MASK);
    g_object_unref(strip->accels);
    for (auto& [id, widget] : strip->items)
        g_signal_handlers_disconnect_by_data(widget, strip);
    gtk_widget_destroy(strip->bar);
    delete strip;
}

void KGtkNativeLayer::setMenuBar(void* window, const std::vector<KNativeMenuItem>& menus)
{
    auto* handle = static_cast<KGtkWindowHandle*>(window);
    if (!hasDisplay() || !handle || !handle->box)
        return;
    bool shown = handle->menuStrip ? handle->menuStrip->shown : true;
    kGtkDestroyMenuStrip(*handle);
    auto* strip = new KGtkMenuStrip();
    strip->window = handle;
    strip->shown = shown;
    strip->accels = gtk_accel_group_new();
    strip->bar = gtk_menu_bar_new();
    for (const KNativeMenuItem& menu : menus) {
        GtkWidget* top = buildItem(*strip, menu);
        g_signal_connect(top, "select", G_CALLBACK(onMenuSelect), strip);
        gtk_menu_shell_append(GTK_MENU_SHELL(strip->bar), top);
    }
    gtk_window_add_accel_group(GTK_WINDOW(handle->window), strip->accels);
    gtk_box_pack_start(GTK_BOX(handle->box), strip->bar, FALSE, FALSE, 0);
    handle->menuStrip = strip;
    gtk_widget_show_all(strip->bar);
    gtk_widget_set_visible(strip->bar, shown);
    kGtkRefitFrame(*handle);
}

void KGtkNativeLayer::updateMenuBar(void* window, const std::vector<KNativeMenuItem>& menus)
{
    auto* handle = static_cast<KGtkWindowHandle*>(window);
    if (!hasDisplay() || !handle || !handle->menuStrip)
        return;
    updateItems(*handle->menuStrip, menus);
}

void KGtkNativeLayer::showMenuBar(void* window, bool shown)
{
    auto* handle = static_cast<KGtkWindowHandle*>(window);
    if (!hasDisplay() || !handle || !handle->menuStrip)
        return;
    if (handle->menuStrip->shown == shown)
        return;
    handle->menuStrip->shown = shown;
    gtk_widget_set_visible(handle->menuStrip->bar, shown);
    kGtkRefitFrame(*handle);
}

void KGtkNativeLayer::removeMenuBar(void* window)
{
    auto* handle = static_cast<KGtkWindowHandle*>(window);
    if (hasDisplay() && handle)
        kGtkDestroyMenuStrip(*handle);
}

GtkWidget* KGtkNativeLayer::gtkMenuBarOf(void* handle) const
{
    auto* window = static_cast<KGtkWindowHandle*>(handle);
    return display && window && window->menuStrip ? window->menuStrip->bar : nullptr;
}

// A text view or an entry does the clipboard's work on its selection.
void KGtkNativeLayer::editControlText(void* control, KNativeTextEdit edit)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!hasDisplay() || !handle)
        return;
    GtkWidget* widget = handle->inner ? handle->inner : handle->widget;
    if (!widget || !(GTK_IS_TEXT_VIEW(widget) || GTK_IS_ENTRY(widget)))
        return;
    switch (edit) {
    case KNativeTextEdit::Cut:
        g_signal_emit_by_name(widget, "cut-clipboard");
        break;
    case KNativeTextEdit::Copy:
        g_signal_emit_by_name(widget, "copy-clipboard");
        break;
    case KNativeTextEdit::Paste:
        g_signal_emit_by_name(widget, "paste-clipboard");
        break;
    case KNativeTextEdit::Clear:
        if (GTK_IS_TEXT_VIEW(widget))
            gtk_text_buffer_delete_selection(gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)), TRUE, TRUE);
        else
            gtk_editable_delete_selection(GTK_EDITABLE(widget));
        break;
    }
}
