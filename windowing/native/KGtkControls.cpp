#include "windowing/KEventTranslator.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

namespace {

// A click is a Command record from the control: its notification code and
// its tag.
void onClicked(GtkButton*, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    KGtkWindowHandle* window = control->window;
    if (!window || !window->owner)
        return;
    KNativeRecord record;
    record.window = window->owner;
    record.message = KNativeMessage::Command;
    record.param1 = KControlNotification::Clicked;
    record.param2 = control->tag;
    record.time = window->layer->now();
    kksDeliverNativeRecord(record);
}

GtkWidget* makeWidget(const KNativeControlSetup& setup)
{
    std::string text = kToUtf8(setup.text.c_str());
    if (setup.kind == KNativeControlKind::StaticText) {
        GtkWidget* label = gtk_label_new(text.c_str());
        gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
        gtk_label_set_xalign(GTK_LABEL(label), 0.0f);
        gtk_label_set_yalign(GTK_LABEL(label), 0.0f);
        return label;
    }
    GtkWidget* button = gtk_button_new_with_label(text.c_str());
    // The keys belong to the framework: a click must not keep the focus.
    gtk_widget_set_focus_on_click(button, FALSE);
    return button;
}

} // namespace

void* KGtkNativeLayer::createControl(void* window, const KNativeControlSetup& setup)
{
    if (!hasDisplay() || !window)
        return nullptr;
    auto* windowHandle = static_cast<KGtkWindowHandle*>(window);
    auto* handle = new KGtkControlHandle();
    handle->window = windowHandle;
    handle->tag = setup.tag;
    handle->widget = makeWidget(setup);
    g_object_add_weak_pointer(G_OBJECT(handle->widget), reinterpret_cast<gpointer*>(&handle->widget));
    if (setup.kind == KNativeControlKind::Button)
        g_signal_connect(handle->widget, "clicked", G_CALLBACK(onClicked), handle);
    gtk_widget_set_size_request(handle->widget, setup.bounds.width, setup.bounds.height);
    gtk_fixed_put(GTK_FIXED(windowHandle->fixed), handle->widget, setup.bounds.x, setup.bounds.y);
    gtk_widget_show(handle->widget);
    return handle;
}

// The widget may be gone already with its window.
void KGtkNativeLayer::destroyControl(void* control)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!handle)
        return;
    if (handle->widget) {
        g_signal_handlers_disconnect_by_data(handle->widget, handle);
        g_object_remove_weak_pointer(G_OBJECT(handle->widget), reinterpret_cast<gpointer*>(&handle->widget));
        gtk_widget_destroy(handle->widget);
    }
    delete handle;
}

void KGtkNativeLayer::setControlBounds(void* control, const KNativeRect& bounds)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!handle || !handle->widget)
        return;
    gtk_widget_set_size_request(handle->widget, bounds.width, bounds.height);
    gtk_fixed_move(GTK_FIXED(handle->window->fixed), handle->widget, bounds.x, bounds.y);
}

void KGtkNativeLayer::setControlText(void* control, const char* text)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!handle || !handle->widget)
        return;
    std::string utf8 = kToUtf8(text);
    if (GTK_IS_LABEL(handle->widget))
        gtk_label_set_text(GTK_LABEL(handle->widget), utf8.c_str());
    else if (GTK_IS_BUTTON(handle->widget))
        gtk_button_set_label(GTK_BUTTON(handle->widget), utf8.c_str());
}

void KGtkNativeLayer::setControlEnabled(void* control, bool enabled)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (handle && handle->widget)
        gtk_widget_set_sensitive(handle->widget, enabled);
}

void KGtkNativeLayer::setControlVisible(void* control, bool visible)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (handle && handle->widget)
        gtk_widget_set_visible(handle->widget, visible);
}

GtkWidget* KGtkNativeLayer::gtkControlOf(void* control) const
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    return handle ? handle->widget : nullptr;
}
