#include "windowing/native/KGtkAccessible.h"

#include "windowing/native/KGtkText.h"

#include <gtk/gtk-a11y.h>

namespace {

constexpr const char* kChildrenKey = "taleloom-accessible-children";

// --- One control -------------------------------------------------------------------

struct KGtkControlAccessible {
    AtkObject parent;
    KNativeAccessible* info;
    GtkWidget* canvas;
    gint index;
};

struct KGtkControlAccessibleClass {
    AtkObjectClass parentClass;
};

void kgtk_control_accessible_component_init(AtkComponentIface* iface);

G_DEFINE_TYPE_WITH_CODE(KGtkControlAccessible, kgtk_control_accessible, ATK_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_COMPONENT, kgtk_control_accessible_component_init))

KGtkControlAccessible* controlOf(gpointer object)
{
    return G_TYPE_CHECK_INSTANCE_CAST(object, kgtk_control_accessible_get_type(), KGtkControlAccessible);
}

AtkRole roleOf(KNativeAccessibleRole role)
{
    switch (role) {
    case KNativeAccessibleRole::ToggleButton:
        return ATK_ROLE_TOGGLE_BUTTON;
    case KNativeAccessibleRole::Slider:
        return ATK_ROLE_SLIDER;
    case KNativeAccessibleRole::Image:
        return ATK_ROLE_IMAGE;
    default:
        return ATK_ROLE_PUSH_BUTTON;
    }
}

AtkStateSet* controlStates(AtkObject* object)
{
    AtkStateSet* states = atk_state_set_new();
    const KNativeAccessible& info = *controlOf(object)->info;
    atk_state_set_add_state(states, ATK_STATE_VISIBLE);
    atk_state_set_add_state(states, ATK_STATE_SHOWING);
    atk_state_set_add_state(states, ATK_STATE_FOCUSABLE);
    if (info.enabled) {
        atk_state_set_add_state(states, ATK_STATE_ENABLED);
        atk_state_set_add_state(states, ATK_STATE_SENSITIVE);
    }
    if (info.focused)
        atk_state_set_add_state(states, ATK_STATE_FOCUSED);
    if (info.pressed) {
        atk_state_set_add_state(states, ATK_STATE_PRESSED);
        atk_state_set_add_state(states, ATK_STATE_CHECKED);
    }
    return states;
}

gint controlIndex(AtkObject* object) { return controlOf(object)->index; }

void controlFinalize(GObject* object)
{
    delete controlOf(object)->info;
    G_OBJECT_CLASS(kgtk_control_accessible_parent_class)->finalize(object);
}

void kgtk_control_accessible_class_init(KGtkControlAccessibleClass* klass)
{
    G_OBJECT_CLASS(klass)->finalize = controlFinalize;
    ATK_OBJECT_CLASS(klass)->ref_state_set = controlStates;
    ATK_OBJECT_CLASS(klass)->get_index_in_parent = controlIndex;
}

void kgtk_control_accessible_init(KGtkControlAccessible* self)
{
    self->info = new KNativeAccessible();
    self->canvas = nullptr;
    self->index = 0;
}

// Where the control stands, in the terms the reader asks for.
void controlExtents(AtkComponent* component, gint* x, gint* y, gint* width, gint* height, AtkCoordType coordinates)
{
    KGtkControlAccessible* self = controlOf(component);
    const KNativeRect& bounds = self->info->bounds;
    gint originX = 0;
    gint originY = 0;
    GdkWindow* window = self->canvas ? gtk_widget_get_window(self->canvas) : nullptr;
    if (coordinates == ATK_XY_SCREEN && window) {
        gdk_window_get_origin(window, &originX, &originY);
    } else if (coordinates == ATK_XY_WINDOW && self->canvas) {
        gtk_widget_translate_coordinates(self->canvas, gtk_widget_get_toplevel(self->canvas), 0, 0, &originX, &originY);
    }
    *x = originX + bounds.x;
    *y = originY + bounds.y;
    *width = bounds.width;
    *height = bounds.height;
}

void kgtk_control_accessible_component_init(AtkComponentIface* iface) { iface->get_extents = controlExtents; }

AtkObject* newControl(GtkWidget* canvas, gint index, const KNativeAccessible& info)
{
    auto* self = controlOf(g_object_new(kgtk_control_accessible_get_type(), nullptr));
    self->canvas = canvas;
    self->index = index;
    *self->info = info;
    AtkObject* object = ATK_OBJECT(self);
    atk_object_set_name(object, kToUtf8(info.name.c_str()).c_str());
    atk_object_set_role(object, roleOf(info.role));
    atk_object_set_parent(object, gtk_widget_get_accessible(canvas));
    return object;
}

// Takes the new state; tells the reader what changed.
void updateControl(AtkObject* object, const KNativeAccessible& info)
{
    KNativeAccessible& held = *controlOf(object)->info;
    KNativeAccessible before = held;
    held = info;
    if (before.name != info.name)
        atk_object_set_name(object, kToUtf8(info.name.c_str()).c_str());
    if (before.role != info.role)
        atk_object_set_role(object, roleOf(info.role));
    if (before.enabled != info.enabled) {
        atk_object_notify_state_change(object, ATK_STATE_ENABLED, info.enabled);
        atk_object_notify_state_change(object, ATK_STATE_SENSITIVE, info.enabled);
    }
    if (before.pressed != info.pressed)
        atk_object_notify_state_change(object, ATK_STATE_CHECKED, info.pressed);
    if (before.focused != info.focused)
        atk_object_notify_state_change(object, ATK_STATE_FOCUSED, info.focused);
}

GPtrArray* childrenOf(GtkWidget* canvas)
{
    return static_cast<GPtrArray*>(g_object_get_data(G_OBJECT(canvas), kChildrenKey));
}

// --- The canvas's own accessible ------------------------------------------------------

struct KGtkCanvasAccessible {
    GtkWidgetAccessible parent;
};

struct KGtkCanvasAccessibleClass {
    GtkWidgetAccessibleClass parentClass;
};

G_DEFINE_TYPE(KGtkCanvasAccessible, kgtk_canvas_accessible, GTK_TYPE_WIDGET_ACCESSIBLE)

gint canvasChildCount(AtkObject* object)
{
    GtkWidget* canvas = gtk_accessible_get_widget(GTK_ACCESSIBLE(object));
    GPtrArray* children = canvas ? childrenOf(canvas) : nullptr;
    return children ? gint(children->len) : 0;
}

AtkObject* canvasChild(AtkObject* object, gint index)
{
    GtkWidget* canvas = gtk_accessible_get_widget(GTK_ACCESSIBLE(object));
    GPtrArray* children = canvas ? childrenOf(canvas) : nullptr;
    if (!children || index < 0 || guint(index) >= children->len)
        return nullptr;
    return ATK_OBJECT(g_object_ref(g_ptr_array_index(children, guint(index))));
}

void kgtk_canvas_accessible_class_init(KGtkCanvasAccessibleClass* klass)
{
    ATK_OBJECT_CLASS(klass)->get_n_children = canvasChildCount;
    ATK_OBJECT_CLASS(klass)->ref_child = canvasChild;
}

void kgtk_canvas_accessible_init(KGtkCanvasAccessible*) { }

// --- The canvas -----------------------------------------------------------------------

struct KGtkCanvas {
    GtkDrawingArea parent;
};

struct KGtkCanvasClass {
    GtkDrawingAreaClass parentClass;
};

G_DEFINE_TYPE(KGtkCanvas, kgtk_canvas, GTK_TYPE_DRAWING_AREA)

void kgtk_canvas_class_init(KGtkCanvasClass* klass)
{
    gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass), kgtk_canvas_accessible_get_type());
}

void kgtk_canvas_init(KGtkCanvas*) { }

void replaceChildren(GtkWidget* canvas, const std::vector<KNativeAccessible>& controls)
{
    AtkObject* parent = gtk_widget_get_accessible(canvas);
    if (GPtrArray* old = childrenOf(canvas)) {
        for (guint i = old->len; i-- > 0;)
            g_signal_emit_by_name(parent, "children-changed::remove", i, g_ptr_array_index(old, i));
    }
    GPtrArray* children = g_ptr_array_new_with_free_func(g_object_unref);
    for (size_t i = 0; i < controls.size(); ++i)
        g_ptr_array_add(children, newControl(canvas, gint(i), controls[i]));
    g_object_set_data_full(G_OBJECT(canvas), kChildrenKey, children,
                           reinterpret_cast<GDestroyNotify>(g_ptr_array_unref));
    for (guint i = 0; i < children->len; ++i)
        g_signal_emit_by_name(parent, "children-changed::add", i, g_ptr_array_index(children, i));
}

} // namespace

GtkWidget* kGtkCanvasNew() { return GTK_WIDGET(g_object_new(kgtk_canvas_get_type(), nullptr)); }

void kGtkSetAccessibleControls(GtkWidget* canvas, const std::vector<KNativeAccessible>& controls)
{
    GPtrArray* children = childrenOf(canvas);
    if (!children || children->len != controls.size()) {
        replaceChildren(canvas, controls);
        children = childrenOf(canvas);
    } else {
        for (size_t i = 0; i < controls.size(); ++i)
            updateControl(ATK_OBJECT(g_ptr_array_index(children, guint(i))), controls[i]);
    }
    for (size_t i = 0; i < controls.size(); ++i) {
        if (controls[i].focused)
            g_signal_emit_by_name(gtk_widget_get_accessible(canvas), "active-descendant-changed",
                                  g_ptr_array_index(children, guint(i)));
    }
}
