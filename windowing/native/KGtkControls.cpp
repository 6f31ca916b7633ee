#include "windowing/KEventTranslator.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkStyledText.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Kind {
using enum KNativeControlKind;
}

namespace {

KGtkControlHandle* handleOf(void* control)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    return handle && handle->widget ? handle : nullptr;
}

// Changes made by the program are not the user's: the widget's signals
// stay silent meanwhile.
class Updating {
public:
    explicit Updating(KGtkControlHandle& control)
        : control(control)
        , before(control.updating)
    {
        control.updating = true;
    }
    ~Updating() { control.updating = before; }
    Updating(const Updating&) = delete;
    Updating& operator=(const Updating&) = delete;

private:
    KGtkControlHandle& control;
    bool before;
};

// A notification is a Command record from the control: its code and its
// tag.
void notify(KGtkControlHandle* control, int32_t code)
{
    KGtkWindowHandle* window = control->window;
    if (control->updating || !control->widget || !window || !window->owner)
        return;
    KNativeRecord record;
    record.window = window->owner;
    record.message = KNativeMessage::Command;
    record.param1 = code;
    record.param2 = control->tag;
    record.time = window->layer->now();
    kksDeliverNativeRecord(record);
}

// --- Signals ---------------------------------------------------------------------

void onClicked(GtkButton*, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (control->window)
        kGtkCommitTypedValue(*control->window);
    notify(control, KControlNotification::Clicked);
}

// Every value signal has the object first and the data last.
void onChanged(gpointer, gpointer data)
{
    notify(static_cast<KGtkControlHandle*>(data), KControlNotification::Changed);
}

// The radio button that goes off reports too; only the one that comes on
// counts.
void onRadioToggled(GtkToggleButton* button, gpointer data)
{
    if (gtk_toggle_button_get_active(button))
        onChanged(button, data);
}

void onRowActivated(GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*, gpointer data)
{
    notify(static_cast<KGtkControlHandle*>(data), KControlNotification::Activated);
}

gboolean onPicturePress(GtkWidget*, GdkEventButton* event, gpointer data)
{
    if (event->type == GDK_BUTTON_PRESS && event->button == 1)
        notify(static_cast<KGtkControlHandle*>(data), KControlNotification::Clicked);
    return TRUE;
}

// A multi-line text has no length limit of its own: what goes past it is
// cut at once, before the change is told.
void onTextBufferChanged(GtkTextBuffer* buffer, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (control->updating)
        return;
    if (control->textLimit > 0 && gtk_text_buffer_get_char_count(buffer) > control->textLimit) {
        Updating updating(*control);
        GtkTextIter from;
        GtkTextIter end;
        gtk_text_buffer_get_iter_at_offset(buffer, &from, control->textLimit);
        gtk_text_buffer_get_end_iter(buffer, &end);
        gtk_text_buffer_delete(buffer, &from, &end);
    }
    notify(control, KControlNotification::Changed);
}

gboolean onDrawSwatch(GtkWidget* widget, cairo_t* cr, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    int width = gtk_widget_get_allocated_width(widget);
    int height = gtk_widget_get_allocated_height(widget);
    cairo_set_source_rgb(cr, 0.25, 0.25, 0.25);
    cairo_paint(cr);
    cairo_set_source_rgb(cr, control->colour.red / 65535.0, control->colour.green / 65535.0,
                         control->colour.blue / 65535.0);
    cairo_rectangle(cr, 1, 1, std::max(width - 2, 0), std::max(height - 2, 0));
    cairo_fill(cr);
    return TRUE;
}

// The picture is centred; what is larger than the control is cut.
gboolean onDrawPicture(GtkWidget* widget, cairo_t* cr, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (!control->picture)
        return FALSE;
    int width = gtk_widget_get_allocated_width(widget);
    int height = gtk_widget_get_allocated_height(widget);
    int x = (width - cairo_image_surface_get_width(control->picture)) / 2;
    int y = (height - cairo_image_surface_get_height(control->picture)) / 2;
    cairo_set_source_surface(cr, control->picture, x, y);
    cairo_paint(cr);
    return TRUE;
}

// --- Widgets ---------------------------------------------------------------------

GtkOrientation orientationOf(const KNativeRect& bounds)
{
    return bounds.width >= bounds.height ? GTK_ORIENTATION_HORIZONTAL : GTK_ORIENTATION_VERTICAL;
}

GtkWidget* scrolled(GtkWidget* inner)
{
    GtkWidget* window = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(window), GTK_SHADOW_IN);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(window), GTK_POLICY_AUTOMATIC, GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(window), inner);
    return window;
}

GtkWidget* makeButton(KGtkControlHandle& control, const std::string& text)
{
    GtkWidget* button = gtk_button_new_with_label(text.c_str());
    // The keys belong to the framework: a click must not keep the focus.
    gtk_widget_set_focus_on_click(button, FALSE);
    g_signal_connect(button, "clicked", G_CALLBACK(onClicked), &control);
    return button;
}

GtkWidget* makeLabel(const std::string& text)
{
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0f);
    gtk_label_set_yalign(GTK_LABEL(label), 0.0f);
    return label;
}

GtkWidget* makeCheckBox(KGtkControlHandle& control, const std::string& text)
{
    GtkWidget* box = gtk_check_button_new_with_label(text.c_str());
    gtk_widget_set_focus_on_click(box, FALSE);
    g_signal_connect(box, "toggled", G_CALLBACK(onChanged), &control);
    return box;
}

GtkWidget* makeEntry(KGtkControlHandle& control)
{
    GtkWidget* entry = gtk_entry_new();
    g_signal_connect(entry, "changed", G_CALLBACK(onChanged), &control);
    return entry;
}

GtkWidget* makeMultiLineText(KGtkControlHandle& control)
{
    control.inner = gtk_text_view_new();
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(control.inner), GTK_WRAP_WORD_CHAR);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(control.inner));
    g_signal_connect(buffer, "changed", G_CALLBACK(onTextBufferChanged), &control);
    return scrolled(control.inner);
}

// A long item is cut with an ellipsis rather than widening the list over
// the controls beside it; the open list shows it whole.
GtkWidget* makePopUpList(KGtkControlHandle& control)
{
    GtkWidget* combo = gtk_combo_box_text_new();
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(combo));
    for (GList* cell = cells; cell; cell = cell->next)
        g_object_set(cell->data, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    g_list_free(cells);
    g_signal_connect(combo, "changed", G_CALLBACK(onChanged), &control);
    return combo;
}

// A list of several columns shows their headings; its items hold their
// cells separated by tabs.
GtkWidget* makeList(KGtkControlHandle& control, const std::vector<std::string>& headings)
{
    gint count = std::max<gint>(1, gint(headings.size()));
    std::vector<GType> types(size_t(count), G_TYPE_STRING);
    GtkListStore* store = gtk_list_store_newv(count, types.data());
    control.inner = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
    g_object_unref(store);
    GtkTreeView* view = GTK_TREE_VIEW(control.inner);
    gtk_tree_view_set_headers_visible(view, headings.empty() ? FALSE : TRUE);
    for (gint column = 0; column < count; ++column) {
        std::string title = headings.empty() ? std::string() : kToUtf8(headings[size_t(column)].c_str());
        gtk_tree_view_insert_column_with_attributes(view, -1, title.c_str(), gtk_cell_renderer_text_new(), "text",
                                                    column, nullptr);
        gtk_tree_view_column_set_resizable(gtk_tree_view_get_column(view, column), TRUE);
    }
    GtkTreeSelection* selection = gtk_tree_view_get_selection(view);
    gtk_tree_selection_set_mode(selection, GTK_SELECTION_SINGLE);
    g_signal_connect(selection, "changed", G_CALLBACK(onChanged), &control);
    g_signal_connect(view, "row-activated", G_CALLBACK(onRowActivated), &control);
    return scrolled(control.inner);
}

GtkAdjustment* newAdjustment() { return gtk_adjustment_new(0, 0, 100, 1, 10, 0); }

GtkWidget* makeRanged(KGtkControlHandle& control, const KNativeControlSetup& setup)
{
    GtkWidget* widget = nullptr;
    switch (setup.kind) {
    case Kind::SpinField:
        widget = gtk_spin_button_new(newAdjustment(), 1, 0);
        gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(widget), TRUE);
        g_signal_connect(widget, "value-changed", G_CALLBACK(onChanged), &control);
        return widget;
    case Kind::Slider:
        widget = gtk_scale_new(orientationOf(setup.bounds), newAdjustment());
        gtk_scale_set_draw_value(GTK_SCALE(widget), FALSE);
        break;
    default:
        widget = gtk_scrollbar_new(orientationOf(setup.bounds), newAdjustment());
        break;
    }
    g_signal_connect(widget, "value-changed", G_CALLBACK(onChanged), &control);
    return widget;
}

GtkWidget* makeSwatch(KGtkControlHandle& control)
{
    GtkWidget* button = gtk_button_new();
    gtk_widget_set_focus_on_click(button, FALSE);
    control.inner = gtk_drawing_area_new();
    gtk_container_add(GTK_CONTAINER(button), control.inner);
    g_signal_connect(control.inner, "draw", G_CALLBACK(onDrawSwatch), &control);
    g_signal_connect(button, "clicked", G_CALLBACK(onClicked), &control);
    return button;
}

GtkWidget* makePicture(KGtkControlHandle& control)
{
    GtkWidget* box = gtk_event_box_new();
    gtk_event_box_set_visible_window(GTK_EVENT_BOX(box), FALSE);
    // The drawing area has a window of its own: the box's must lie over it
    // to see the presses.
    gtk_event_box_set_above_child(GTK_EVENT_BOX(box), TRUE);
    gtk_widget_add_events(box, GDK_BUTTON_PRESS_MASK);
    control.inner = gtk_drawing_area_new();
    gtk_container_add(GTK_CONTAINER(box), control.inner);
    g_signal_connect(control.inner, "draw", G_CALLBACK(onDrawPicture), &control);
    g_signal_connect(box, "button-press-event", G_CALLBACK(onPicturePress), &control);
    return box;
}

GtkWidget* makeWidget(KGtkControlHandle& control, const KNativeControlSetup& setup)
{
    std::string text = kToUtf8(setup.text.c_str());
    switch (setup.kind) {
    case Kind::StaticText:
        return makeLabel(text);
    case Kind::RadioGroup:
        return gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    case Kind::CheckBox:
        return makeCheckBox(control, text);
    case Kind::Entry:
        return makeEntry(control);
    case Kind::MultiLineText:
        return makeMultiLineText(control);
    case Kind::PopUpList:
        return makePopUpList(control);
    case Kind::SpinField:
    case Kind::Slider:
    case Kind::ScrollBar:
        return makeRanged(control, setup);
    case Kind::List:
        return makeList(control, setup.columns);
    case Kind::ColourSwatch:
        return makeSwatch(control);
    case Kind::Picture:
        return makePicture(control);
    case Kind::StyledText:
        return kGtkMakeStyledText(control, setup);
    default:
        return makeButton(control, text);
    }
}

// --- Items -------------------------------------------------------------------------

void fillRadioGroup(KGtkControlHandle& control, const std::vector<std::string>& items)
{
    GList* children = gtk_container_get_children(GTK_CONTAINER(control.widget));
    for (GList* child = children; child; child = child->next)
        gtk_widget_destroy(GTK_WIDGET(child->data));
    g_list_free(children);
    GtkWidget* first = nullptr;
    for (const std::string& item : items) {
        GtkWidget* radio = gtk_radio_button_new_with_label_from_widget(first ? GTK_RADIO_BUTTON(first) : nullptr,
                                                                       kToUtf8(item.c_str()).c_str());
        gtk_widget_set_focus_on_click(radio, FALSE);
        g_signal_connect(radio, "toggled", G_CALLBACK(onRadioToggled), &control);
        gtk_box_pack_start(GTK_BOX(control.widget), radio, TRUE, TRUE, 0);
        gtk_widget_show(radio);
        if (!first)
            first = radio;
    }
}

GtkWidget* radioAt(KGtkControlHandle& control, int32_t index)
{
    GList* children = gtk_container_get_children(GTK_CONTAINER(control.widget));
    GList* item = index >= 0 ? g_list_nth(children, guint(index)) : nullptr;
    GtkWidget* radio = item ? GTK_WIDGET(item->data) : nullptr;
    g_list_free(children);
    return radio;
}

int32_t activeRadio(KGtkControlHandle& control)
{
    GList* children = gtk_container_get_children(GTK_CONTAINER(control.widget));
    int32_t index = 0;
    int32_t active = -1;
    for (GList* child = children; child; child = child->next, ++index) {
        if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(child->data)))
            active = index;
    }
    g_list_free(children);
    return active;
}

GtkListStore* listStore(KGtkControlHandle& control)
{
    return GTK_LIST_STORE(gtk_tree_view_get_model(GTK_TREE_VIEW(control.inner)));
}

void fillList(KGtkControlHandle& control, const std::vector<std::string>& items)
{
    GtkListStore* store = listStore(control);
    gtk_list_store_clear(store);
    gint columns = gtk_tree_model_get_n_columns(GTK_TREE_MODEL(store));
    for (const std::string& item : items) {
        GtkTreeIter row;
        gtk_list_store_append(store, &row);
        size_t from = 0;
        for (gint column = 0; column < columns; ++column) {
            // One column takes the item whole, tabs and all.
            size_t tab = columns > 1 ? item.find('\t', from) : std::string::npos;
            std::string cell
                = from <= item.size() ? item.substr(from, tab == std::string::npos ? tab : tab - from) : "";
            gtk_list_store_set(store, &row, column, kToUtf8(cell.c_str()).c_str(), -1);
            from = tab == std::string::npos ? item.size() + 1 : tab + 1;
        }
    }
}

int32_t selectedRow(KGtkControlHandle& control)
{
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(control.inner));
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(selection, &model, &iter))
        return -1;
    GtkTreePath* path = gtk_tree_model_get_path(model, &iter);
    int32_t row = gtk_tree_path_get_indices(path)[0];
    gtk_tree_path_free(path);
    return row;
}

void selectRow(KGtkControlHandle& control, int32_t row)
{
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(control.inner));
    GtkTreeIter iter;
    if (row < 0 || !gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(listStore(control)), &iter, nullptr, row)) {
        gtk_tree_selection_unselect_all(selection);
        return;
    }
    gtk_tree_selection_select_iter(selection, &iter);
    GtkTreePath* path = gtk_tree_model_get_path(GTK_TREE_MODEL(listStore(control)), &iter);
    gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(control.inner), path, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(path);
}

GtkTextBuffer* textBuffer(KGtkControlHandle& control) { return gtk_text_view_get_buffer(GTK_TEXT_VIEW(control.inner)); }

// A scroll bar's thumb covers a page of the value; GTK counts the page in
// the upper bound, so that the value still ends at the maximum.
void applyRange(KGtkControlHandle& control, const KNativeControlRange& range)
{
    double page = control.kind == Kind::ScrollBar ? std::max(range.page, 0.0) : 0.0;
    double step = std::max(range.step, 0.0);
    GtkAdjustment* adjustment = control.kind == Kind::SpinField
                                    ? gtk_spin_button_get_adjustment(GTK_SPIN_BUTTON(control.widget))
                                    : gtk_range_get_adjustment(GTK_RANGE(control.widget));
    double value = std::clamp(gtk_adjustment_get_value(adjustment), range.minimum, range.maximum);
    gtk_adjustment_configure(adjustment, value, range.minimum, range.maximum + page, step, std::max(range.page, step),
                             page);
    if (control.kind == Kind::SpinField)
        gtk_spin_button_set_digits(GTK_SPIN_BUTTON(control.widget), guint(std::max(range.decimals, 0)));
    else
        gtk_range_set_round_digits(GTK_RANGE(control.widget), range.decimals);
    if (control.kind == Kind::Slider)
        gtk_scale_set_digits(GTK_SCALE(control.widget), range.decimals);
}

void applyTextLimit(KGtkControlHandle& control, int32_t limit)
{
    control.textLimit = std::max(limit, 0);
    if (control.kind == Kind::Entry) {
        gtk_entry_set_max_length(GTK_ENTRY(control.widget), control.textLimit);
        return;
    }
    GtkTextBuffer* buffer = textBuffer(control);
    if (control.textLimit > 0 && gtk_text_buffer_get_char_count(buffer) > control.textLimit) {
        GtkTextIter from;
        GtkTextIter end;
        gtk_text_buffer_get_iter_at_offset(buffer, &from, control.textLimit);
        gtk_text_buffer_get_end_iter(buffer, &end);
        gtk_text_buffer_delete(buffer, &from, &end);
    }
}

void applyPicture(KGtkControlHandle& control, const KNativeImageData& picture)
{
    if (control.picture)
        cairo_surface_destroy(control.picture);
    control.picture = nullptr;
    if (picture.width <= 0 || picture.height <= 0
        || picture.pixels.size() != size_t(picture.width) * size_t(picture.height))
        return;
    // The pixels are already cairo's RGB24 words.
    control.picture = cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height);
    cairo_surface_flush(control.picture);
    unsigned char* data = cairo_image_surface_get_data(control.picture);
    int stride = cairo_image_surface_get_stride(control.picture);
    for (int32_t y = 0; y < picture.height; ++y)
        std::memcpy(data + ptrdiff_t(y) * stride, &picture.pixels[size_t(y) * size_t(picture.width)],
                    size_t(picture.width) * 4);
    cairo_surface_mark_dirty(control.picture);
}

// Everything the handle listens to, so that no signal reaches it once it
// is gone.
void disconnect(KGtkControlHandle& control)
{
    g_signal_handlers_disconnect_by_data(control.widget, &control);
    if (control.kind == Kind::RadioGroup) {
        GList* children = gtk_container_get_children(GTK_CONTAINER(control.widget));
        for (GList* child = children; child; child = child->next)
            g_signal_handlers_disconnect_by_data(child->data, &control);
        g_list_free(children);
    }
    if (!control.inner)
        return;
    g_signal_handlers_disconnect_by_data(control.inner, &control);
    if (control.kind == Kind::MultiLineText)
        g_signal_handlers_disconnect_by_data(textBuffer(control), &control);
    if (control.kind == Kind::List)
        g_signal_handlers_disconnect_by_data(gtk_tree_view_get_selection(GTK_TREE_VIEW(control.inner)), &control);
}

bool hasItems(KNativeControlKind kind)
{
    return kind == Kind::RadioGroup || kind == Kind::PopUpList || kind == Kind::List;
}

bool isRanged(KNativeControlKind kind)
{
    return kind == Kind::SpinField || kind == Kind::Slider || kind == Kind::ScrollBar;
}

bool takesText(KNativeControlKind kind) { return kind == Kind::Entry || kind == Kind::MultiLineText; }

} // namespace

void kGtkCommitTypedValue(KGtkWindowHandle& window)
{
    GtkWidget* focus = window.window ? gtk_window_get_focus(GTK_WINDOW(window.window)) : nullptr;
    if (focus && GTK_IS_SPIN_BUTTON(focus))
        gtk_spin_button_update(GTK_SPIN_BUTTON(focus));
}

void* KGtkNativeLayer::createControl(void* window, const KNativeControlSetup& setup)
{
    if (!hasDisplay() || !window)
        return nullptr;
    auto* windowHandle = static_cast<KGtkWindowHandle*>(window);
    auto* handle = new KGtkControlHandle();
    handle->window = windowHandle;
    handle->tag = setup.tag;
    handle->kind = setup.kind;
    handle->widget = makeWidget(*handle, setup);
    g_object_add_weak_pointer(G_OBJECT(handle->widget), reinterpret_cast<gpointer*>(&handle->widget));
    {
        Updating updating(*handle);
        if (hasItems(setup.kind))
            setControlItems(handle, setup.items);
        if (isRanged(setup.kind))
            setControlRange(handle, setup.range);
        if (takesText(setup.kind)) {
            setControlTextLimit(handle, setup.textLimit);
            setControlText(handle, setup.text.c_str());
        }
        if (setup.kind == Kind::ColourSwatch)
            handle->colour = setup.colour;
        if (setup.kind == Kind::Picture)
            applyPicture(*handle, setup.picture);
        setControlValue(handle, setup.value);
    }
    if (setup.kind == Kind::StyledText) {
        kGtkPlaceStyledText(*handle, setup.bounds);
    } else {
        gtk_widget_set_size_request(handle->widget, setup.bounds.width, setup.bounds.height);
        gtk_fixed_put(GTK_FIXED(windowHandle->fixed), handle->widget, setup.bounds.x, setup.bounds.y);
    }
    gtk_widget_show_all(handle->widget);
    return handle;
}

// The widget may be gone already with its window.
void KGtkNativeLayer::destroyControl(void* control)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!handle)
        return;
    kGtkDropStyledText(*handle);
    if (handle->widget) {
        disconnect(*handle);
        g_object_remove_weak_pointer(G_OBJECT(handle->widget), reinterpret_cast<gpointer*>(&handle->widget));
        gtk_widget_destroy(handle->widget);
    }
    if (handle->picture)
        cairo_surface_destroy(handle->picture);
    delete handle;
}

void KGtkNativeLayer::setControlBounds(void* control, const KNativeRect& bounds)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return;
    if (handle->kind == Kind::StyledText) {
        kGtkPlaceStyledText(*handle, bounds);
        return;
    }
    gtk_widget_set_size_request(handle->widget, bounds.width, bounds.height);
    gtk_fixed_move(GTK_FIXED(handle->window->fixed), handle->widget, bounds.x, bounds.y);
}

void KGtkNativeLayer::setControlText(void* control, const char* text)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return;
    Updating updating(*handle);
    std::string utf8 = kToUtf8(text);
    switch (handle->kind) {
    case Kind::StaticText:
        gtk_label_set_text(GTK_LABEL(handle->widget), utf8.c_str());
        break;
    case Kind::Button:
    case Kind::CheckBox:
        gtk_button_set_label(GTK_BUTTON(handle->widget), utf8.c_str());
        break;
    case Kind::Entry:
        gtk_entry_set_text(GTK_ENTRY(handle->widget), utf8.c_str());
        break;
    case Kind::MultiLineText:
        gtk_text_buffer_set_text(textBuffer(*handle), utf8.c_str(), -1);
        applyTextLimit(*handle, handle->textLimit);
        break;
    default:
        break;
    }
}

void KGtkNativeLayer::setControlEnabled(void* control, bool enabled)
{
    if (KGtkControlHandle* handle = handleOf(control))
        gtk_widget_set_sensitive(handle->widget, enabled);
}

void KGtkNativeLayer::setControlVisible(void* control, bool visible)
{
    if (KGtkControlHandle* handle = handleOf(control))
        gtk_widget_set_visible(handle->widget, visible);
}

void KGtkNativeLayer::setControlValue(void* control, double value)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return;
    Updating updating(*handle);
    auto index = static_cast<int32_t>(std::lround(value));
    switch (handle->kind) {
    case Kind::CheckBox:
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(handle->widget), value != 0);
        break;
    case Kind::RadioGroup:
        if (GtkWidget* radio = radioAt(*handle, index))
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(radio), TRUE);
        break;
    case Kind::PopUpList:
        gtk_combo_box_set_active(GTK_COMBO_BOX(handle->widget), index);
        break;
    case Kind::List:
        selectRow(*handle, index);
        break;
    case Kind::SpinField:
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(handle->widget), value);
        break;
    case Kind::Slider:
    case Kind::ScrollBar:
        gtk_range_set_value(GTK_RANGE(handle->widget), value);
        break;
    default:
        break;
    }
}

void KGtkNativeLayer::setControlItems(void* control, const std::vector<std::string>& items)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return;
    Updating updating(*handle);
    switch (handle->kind) {
    case Kind::RadioGroup:
        fillRadioGroup(*handle, items);
        break;
    case Kind::PopUpList:
        gtk_combo_box_text_remove_all(GTK_COMBO_BOX_TEXT(handle->widget));
        for (const std::string& item : items)
            gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(handle->widget), kToUtf8(item.c_str()).c_str());
        break;
    case Kind::List:
        fillList(*handle, items);
        break;
    default:
        break;
    }
}

void KGtkNativeLayer::setControlRange(void* control, const KNativeControlRange& range)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle || !isRanged(handle->kind))
        return;
    Updating updating(*handle);
    applyRange(*handle, range);
}

void KGtkNativeLayer::setControlTextLimit(void* control, int32_t limit)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle || !takesText(handle->kind))
        return;
    Updating updating(*handle);
    applyTextLimit(*handle, limit);
}

void KGtkNativeLayer::setControlColour(void* control, const KNativeColour& colour)
{
    KGtkControlHandle* handle = handleOf(control);
    if (handle && handle->kind == Kind::StyledText && handle->styled) {
        kGtkSetStyledBackground(*handle, colour);
        return;
    }
    if (!handle || handle->kind != Kind::ColourSwatch)
        return;
    handle->colour = colour;
    gtk_widget_queue_draw(handle->inner);
}

void KGtkNativeLayer::setControlPicture(void* control, const KNativeImageData& picture)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle || handle->kind != Kind::Picture)
        return;
    applyPicture(*handle, picture);
    gtk_widget_queue_draw(handle->inner);
}

bool KGtkNativeLayer::controlValue(void* control, double& value)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return false;
    switch (handle->kind) {
    case Kind::CheckBox:
        value = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(handle->widget)) ? 1 : 0;
        return true;
    case Kind::RadioGroup:
        value = activeRadio(*handle);
        return true;
    case Kind::PopUpList:
        value = gtk_combo_box_get_active(GTK_COMBO_BOX(handle->widget));
        return true;
    case Kind::List:
        value = selectedRow(*handle);
        return true;
    case Kind::SpinField:
        value = gtk_spin_button_get_value(GTK_SPIN_BUTTON(handle->widget));
        return true;
    case Kind::Slider:
    case Kind::ScrollBar:
        value = gtk_range_get_value(GTK_RANGE(handle->widget));
        return true;
    default:
        return false;
    }
}

bool KGtkNativeLayer::controlText(void* control, std::string& text)
{
    KGtkControlHandle* handle = handleOf(control);
    if (!handle)
        return false;
    if (handle->kind == Kind::Entry) {
        text = kFromUtf8(gtk_entry_get_text(GTK_ENTRY(handle->widget)));
        return true;
    }
    if (handle->kind != Kind::MultiLineText)
        return false;
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(textBuffer(*handle), &start, &end);
    gchar* utf8 = gtk_text_buffer_get_text(textBuffer(*handle), &start, &end, FALSE);
    text = kFromUtf8(utf8);
    g_free(utf8);
    return true;
}

GtkWidget* KGtkNativeLayer::gtkControlOf(void* control) const
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    return handle ? handle->widget : nullptr;
}
