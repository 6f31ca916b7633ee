#include "windowing/native/KGtkStyledText.h"

#include "windowing/KEventTranslator.h"
#include "windowing/native/KGtkNativeLayer.h"
#include "windowing/native/KGtkText.h"
#include "windowing/native/KGtkWindowHandle.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// What a styled text field remembers beside its buffer: the style that
// typing takes in empty text, the style chosen at the caret with nothing
// selected, and the style an insertion under way takes.
struct KGtkStyledState {
    KNativeTextStyle emptyStyle;
    bool hasPending = false;
    KNativeTextStyle pending;
    KNativeTextStyle typing;
    bool inserting = false;
    GtkCssProvider* background = nullptr;
};

namespace {

// KKeyEvent's codes.
constexpr int32_t kLeft = 273;
constexpr int32_t kRight = 274;
constexpr int32_t kHome = 275;
constexpr int32_t kEnd = 276;
constexpr int32_t kDelete = 280;
constexpr int32_t kBackspace = 281;
constexpr int32_t kReturn = 283;
// KFont's face bits.
constexpr int32_t kBold = 1;
constexpr int32_t kItalic = 2;
constexpr int32_t kUnderline = 4;

constexpr const char* kFamilyTag = "family:";
constexpr const char* kSizeTag = "size:";
constexpr const char* kColourTag = "colour:";

KGtkControlHandle* styledHandle(void* control)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    return handle && handle->widget && handle->kind == KNativeControlKind::StyledText && handle->styled ? handle
                                                                                                        : nullptr;
}

GtkTextView* viewOf(KGtkControlHandle& control) { return GTK_TEXT_VIEW(control.inner); }
GtkTextBuffer* bufferOf(KGtkControlHandle& control) { return gtk_text_view_get_buffer(viewOf(control)); }

// Changes the program makes are not typing: the insertion handlers leave
// their tags alone meanwhile.
class Loading {
public:
    explicit Loading(KGtkControlHandle& control)
        : control(control)
        , before(control.updating)
    {
        control.updating = true;
    }
    ~Loading() { control.updating = before; }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;

private:
    KGtkControlHandle& control;
    bool before;
};

// --- Tags ---------------------------------------------------------------------------

GtkTextTag* namedTag(GtkTextBuffer* buffer, const std::string& name)
{
    GtkTextTagTable* table = gtk_text_buffer_get_tag_table(buffer);
    if (GtkTextTag* tag = gtk_text_tag_table_lookup(table, name.c_str()))
        return tag;
    GtkTextTag* tag = gtk_text_buffer_create_tag(buffer, name.c_str(), nullptr);
    if (name == "bold") {
        g_object_set(tag, "weight", PANGO_WEIGHT_BOLD, nullptr);
    } else if (name == "italic") {
        g_object_set(tag, "style", PANGO_STYLE_ITALIC, nullptr);
    } else if (name == "underline") {
        g_object_set(tag, "underline", PANGO_UNDERLINE_SINGLE, nullptr);
    } else if (name.rfind(kFamilyTag, 0) == 0) {
        g_object_set(tag, "family", name.c_str() + std::strlen(kFamilyTag), nullptr);
    } else if (name.rfind(kSizeTag, 0) == 0) {
        g_object_set(tag, "size-points", std::atof(name.c_str() + std::strlen(kSizeTag)) / 100.0, nullptr);
    } else if (name.rfind(kColourTag, 0) == 0) {
        unsigned red = 0, green = 0, blue = 0;
        std::sscanf(name.c_str() + std::strlen(kColourTag), "%4x%4x%4x", &red, &green, &blue);
        GdkRGBA rgba { red / 65535.0, green / 65535.0, blue / 65535.0, 1.0 };
        g_object_set(tag, "foreground-rgba", &rgba, nullptr);
    }
    return tag;
}

// The names of the tags that show the style; the size is kept in
// hundredths of a point.
std::vector<std::string> tagNames(const KNativeTextStyle& style)
{
    char colour[32];
    std::snprintf(colour, sizeof(colour), "%s%04x%04x%04x", kColourTag, style.colour.red, style.colour.green,
                  style.colour.blue);
    std::vector<std::string> names { std::string(kFamilyTag) + kToUtf8(style.family.c_str()),
                                     std::string(kSizeTag) + std::to_string(std::lround(style.size * 100.0)), colour };
    if (style.face & kBold)
        names.emplace_back("bold");
    if (style.face & kItalic)
        names.emplace_back("italic");
    if (style.face & kUnderline)
        names.emplace_back("underline");
    return names;
}

void applyStyle(GtkTextBuffer* buffer, const GtkTextIter& from, const GtkTextIter& to, const KNativeTextStyle& style)
{
    gtk_text_buffer_remove_all_tags(buffer, &from, &to);
    for (const std::string& name : tagNames(style))
        gtk_text_buffer_apply_tag(buffer, namedTag(buffer, name), &from, &to);
}

// The style the tags at the character show; what no tag tells comes from
// `base`.
KNativeTextStyle styleAt(const GtkTextIter& at, const KNativeTextStyle& base)
{
    KNativeTextStyle style = base;
    style.face = 0;
    GSList* tags = gtk_text_iter_get_tags(&at);
    for (GSList* item = tags; item; item = item->next) {
        gchar* raw = nullptr;
        g_object_get(item->data, "name", &raw, nullptr);
        std::string name = raw ? raw : "";
        g_free(raw);
        if (name == "bold") {
            style.face |= kBold;
        } else if (name == "italic") {
            style.face |= kItalic;
        } else if (name == "underline") {
            style.face |= kUnderline;
        } else if (name.rfind(kFamilyTag, 0) == 0) {
            style.family = kFromUtf8(name.c_str() + std::strlen(kFamilyTag));
        } else if (name.rfind(kSizeTag, 0) == 0) {
            style.size = std::atof(name.c_str() + std::strlen(kSizeTag)) / 100.0;
        } else if (name.rfind(kColourTag, 0) == 0) {
            unsigned red = 0, green = 0, blue = 0;
            std::sscanf(name.c_str() + std::strlen(kColourTag), "%4x%4x%4x", &red, &green, &blue);
            style.colour = { uint16_t(red), uint16_t(green), uint16_t(blue) };
        }
    }
    g_slist_free(tags);
    return style;
}

KNativeTextStyle styleAtOffset(KGtkControlHandle& control, int32_t offset)
{
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_offset(bufferOf(control), &at, offset);
    return styleAt(at, control.styled->emptyStyle);
}

// What typing at the offset takes: the style chosen there, else that of
// the character before, else that of the first, else the empty text's.
KNativeTextStyle typingStyleAt(KGtkControlHandle& control, int32_t offset)
{
    KGtkStyledState& state = *control.styled;
    if (state.hasPending)
        return state.pending;
    if (offset > 0)
        return styleAtOffset(control, offset - 1);
    if (gtk_text_buffer_get_char_count(bufferOf(control)) > 0)
        return styleAtOffset(control, 0);
    return state.emptyStyle;
}

int32_t cursorOffset(GtkTextBuffer* buffer)
{
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
    return gtk_text_iter_get_offset(&at);
}

// --- Signals ---------------------------------------------------------------------------

void onInsertBefore(GtkTextBuffer*, GtkTextIter* location, gchar*, gint, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (control->updating)
        return;
    control->styled->typing = typingStyleAt(*control, gtk_text_iter_get_offset(location));
    control->styled->inserting = true;
}

// The location has moved past the inserted text.
void onInsertAfter(GtkTextBuffer* buffer, GtkTextIter* location, gchar* text, gint length, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (control->updating || !control->styled->inserting)
        return;
    control->styled->inserting = false;
    control->styled->hasPending = false;
    GtkTextIter from = *location;
    gtk_text_iter_backward_chars(&from, int(g_utf8_strlen(text, length)));
    applyStyle(buffer, from, *location, control->styled->typing);
}

// Text emptied keeps the style it had for what is typed next.
void onDeleteBefore(GtkTextBuffer* buffer, GtkTextIter* from, GtkTextIter* to, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    GtkTextIter first = *from;
    GtkTextIter last = *to;
    gtk_text_iter_order(&first, &last);
    if (gtk_text_iter_is_start(&first) && gtk_text_iter_is_end(&last) && !gtk_text_iter_equal(&first, &last))
        control->styled->emptyStyle = styleAt(first, control->styled->emptyStyle);
    (void)buffer;
}

// The caret moved by the user: a style chosen at the old place is gone.
void onMarkSet(GtkTextBuffer* buffer, GtkTextIter*, GtkTextMark* mark, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    if (mark == gtk_text_buffer_get_insert(buffer) && !control->styled->inserting && !control->updating)
        control->styled->hasPending = false;
}

void notifyMenu(KGtkControlHandle* control, double rootX, double rootY)
{
    KGtkWindowHandle* window = control->window;
    if (!window || !window->owner)
        return;
    KNativeRecord record;
    record.window = window->owner;
    record.message = KNativeMessage::Command;
    record.param1 = KControlNotification::ContextMenu;
    record.param2 = control->tag;
    record.time = window->layer->now();
    record.x = int32_t(rootX);
    record.y = int32_t(rootY);
    kksDeliverNativeRecord(record);
}

// The field's own menu is the program's: GTK's editing menu never shows.
gboolean onViewPress(GtkWidget*, GdkEventButton* event, gpointer data)
{
    if (event->type != GDK_BUTTON_PRESS || event->button != 3)
        return FALSE;
    notifyMenu(static_cast<KGtkControlHandle*>(data), event->x_root, event->y_root);
    return TRUE;
}

gboolean onPopupMenuKey(GtkWidget* widget, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    GtkTextBuffer* buffer = bufferOf(*control);
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
    GdkRectangle place;
    gtk_text_view_get_iter_location(GTK_TEXT_VIEW(widget), &at, &place);
    int x = 0, y = 0;
    gtk_text_view_buffer_to_window_coords(GTK_TEXT_VIEW(widget), GTK_TEXT_WINDOW_WIDGET, place.x,
                                          place.y + place.height, &x, &y);
    gint originX = 0, originY = 0;
    if (GdkWindow* window = gtk_widget_get_window(widget))
        gdk_window_get_origin(window, &originX, &originY);
    GtkAllocation allocation;
    gtk_widget_get_allocation(widget, &allocation);
    notifyMenu(control, originX + allocation.x + x, originY + allocation.y + y);
    return TRUE;
}

GtkJustification justificationOf(int32_t alignment)
{
    switch (alignment) {
    case 1:
        return GTK_JUSTIFY_CENTER;
    case 2:
        return GTK_JUSTIFY_RIGHT;
    case 3:
        return GTK_JUSTIFY_FILL;
    default:
        return GTK_JUSTIFY_LEFT;
    }
}

int32_t alignmentOf(GtkJustification justification)
{
    switch (justification) {
    case GTK_JUSTIFY_CENTER:
        return 1;
    case GTK_JUSTIFY_RIGHT:
        return 2;
    case GTK_JUSTIFY_FILL:
        return 3;
    default:
        return 0;
    }
}

// --- Text in and out ---------------------------------------------------------------------

void load(KGtkControlHandle& control, const KNativeStyledText& text)
{
    Loading loading(control);
    KGtkStyledState& state = *control.styled;
    GtkTextBuffer* buffer = bufferOf(control);
    state.emptyStyle = text.runs.empty() ? KNativeTextStyle() : text.runs.front().style;
    state.hasPending = false;
    gtk_text_buffer_set_text(buffer, "", 0);
    size_t position = 0;
    for (const KNativeStyledRun& run : text.runs) {
        size_t length = std::min(size_t(std::max(run.length, 0)), text.text.size() - position);
        if (length == 0)
            continue;
        std::string piece = text.text.substr(position, length);
        position += length;
        std::replace(piece.begin(), piece.end(), '\r', '\n');
        std::string utf8 = kToUtf8(piece.c_str());
        GtkTextIter end;
        gtk_text_buffer_get_end_iter(buffer, &end);
        int32_t from = gtk_text_iter_get_offset(&end);
        gtk_text_buffer_insert(buffer, &end, utf8.data(), int(utf8.size()));
        GtkTextIter start;
        gtk_text_buffer_get_iter_at_offset(buffer, &start, from);
        gtk_text_buffer_get_end_iter(buffer, &end);
        applyStyle(buffer, start, end, run.style);
    }
    gtk_text_view_set_justification(viewOf(control), justificationOf(text.alignment));
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer, &start);
    gtk_text_buffer_place_cursor(buffer, &start);
}

KNativeStyledText read(KGtkControlHandle& control)
{
    KGtkStyledState& state = *control.styled;
    GtkTextBuffer* buffer = bufferOf(control);
    KNativeStyledText text;
    text.alignment = alignmentOf(gtk_text_view_get_justification(viewOf(control)));
    GtkTextIter from;
    gtk_text_buffer_get_start_iter(buffer, &from);
    while (!gtk_text_iter_is_end(&from)) {
        GtkTextIter to = from;
        gtk_text_iter_forward_to_tag_toggle(&to, nullptr);
        gchar* utf8 = gtk_text_buffer_get_text(buffer, &from, &to, FALSE);
        std::string piece = kFromUtf8(utf8);
        g_free(utf8);
        std::replace(piece.begin(), piece.end(), '\n', '\r');
        KNativeTextStyle style = styleAt(from, state.emptyStyle);
        text.text += piece;
        if (!text.runs.empty() && text.runs.back().style == style)
            text.runs.back().length += int32_t(piece.size());
        else if (!piece.empty())
            text.runs.push_back({ int32_t(piece.size()), style });
        from = to;
    }
    if (text.runs.empty())
        text.runs.push_back({ 0, state.hasPending ? state.pending : state.emptyStyle });
    return text;
}

void applyChange(KNativeTextStyle& style, const KNativeStyleChange& change)
{
    if (change.setFamily)
        style.family = change.family;
    if (change.setSize)
        style.size = change.size;
    style.face = (style.face & ~change.faceMask) | (change.face & change.faceMask);
    if (change.setColour)
        style.colour = change.colour;
}

// Each stretch of one style in the range takes the change.
void changeRange(KGtkControlHandle& control, GtkTextIter from, const GtkTextIter& to, const KNativeStyleChange& change)
{
    GtkTextBuffer* buffer = bufferOf(control);
    GtkTextMark* end = gtk_text_buffer_create_mark(buffer, nullptr, &to, FALSE);
    while (gtk_text_iter_compare(&from, &to) < 0) {
        GtkTextIter stop = from;
        gtk_text_iter_forward_to_tag_toggle(&stop, nullptr);
        GtkTextIter limit;
        gtk_text_buffer_get_iter_at_mark(buffer, &limit, end);
        if (gtk_text_iter_compare(&stop, &limit) > 0)
            stop = limit;
        KNativeTextStyle style = styleAt(from, control.styled->emptyStyle);
        applyChange(style, change);
        int32_t next = gtk_text_iter_get_offset(&stop);
        applyStyle(buffer, from, stop, style);
        gtk_text_buffer_get_iter_at_offset(buffer, &from, next);
        gtk_text_buffer_get_iter_at_mark(buffer, &limit, end);
        if (gtk_text_iter_compare(&from, &limit) >= 0)
            break;
    }
    gtk_text_buffer_delete_mark(buffer, end);
}

std::string characterUtf8(int32_t key)
{
    char byte[2] = { char(key), 0 };
    return kToUtf8(byte);
}

void moveCursor(GtkTextBuffer* buffer, int32_t offset)
{
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_offset(buffer, &at, offset);
    gtk_text_buffer_place_cursor(buffer, &at);
}

void typeKey(KGtkControlHandle& control, int32_t key)
{
    GtkTextBuffer* buffer = bufferOf(control);
    bool selected = gtk_text_buffer_get_has_selection(buffer);
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_selection_bounds(buffer, &start, &end);
    int32_t cursor = cursorOffset(buffer);
    switch (key) {
    case kBackspace:
        if (!selected)
            gtk_text_buffer_backspace(buffer, &end, TRUE, TRUE);
        else
            gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
        return;
    case kDelete:
        if (!selected && !gtk_text_iter_is_end(&end))
            gtk_text_iter_forward_char(&end);
        gtk_text_buffer_delete_interactive(buffer, &start, &end, TRUE);
        return;
    case kLeft:
        moveCursor(buffer, selected ? gtk_text_iter_get_offset(&start) : std::max(cursor - 1, 0));
        return;
    case kRight:
        moveCursor(buffer, selected ? gtk_text_iter_get_offset(&end) : cursor + 1);
        return;
    case kHome:
        moveCursor(buffer, 0);
        return;
    case kEnd:
        moveCursor(buffer, gtk_text_buffer_get_char_count(buffer));
        return;
    default:
        break;
    }
    std::string typed = key == kReturn ? std::string("\n") : key >= 32 && key <= 255 ? characterUtf8(key) : "";
    if (typed.empty())
        return;
    // The typing style is that before the selection, which goes first.
    if (selected) {
        KNativeTextStyle style = typingStyleAt(control, gtk_text_iter_get_offset(&start));
        gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
        control.styled->pending = style;
        control.styled->hasPending = true;
    }
    gtk_text_buffer_insert_interactive_at_cursor(buffer, typed.data(), int(typed.size()), TRUE);
}

} // namespace

// --- Making -------------------------------------------------------------------------------

namespace {

constexpr const char* kBoundsKey = "taleloom-bounds";

// The field stands over the page as an overlay of its own, in a window of
// exactly its rectangle: the layer of controls lets the pointer through to
// the page, and with it everything but input-only windows, which would
// leave the text view without its clicks.
gboolean onChildPosition(GtkOverlay*, GtkWidget* widget, GdkRectangle* allocation, gpointer data)
{
    auto* control = static_cast<KGtkControlHandle*>(data);
    auto* bounds = static_cast<KNativeRect*>(g_object_get_data(G_OBJECT(widget), kBoundsKey));
    if (widget != control->widget || !bounds)
        return FALSE;
    *allocation = { bounds->x, bounds->y, std::max(bounds->width, 1), std::max(bounds->height, 1) };
    return TRUE;
}

} // namespace

void kGtkPlaceStyledText(KGtkControlHandle& control, const KNativeRect& bounds)
{
    auto* kept = static_cast<KNativeRect*>(g_object_get_data(G_OBJECT(control.widget), kBoundsKey));
    if (!kept) {
        kept = new KNativeRect();
        g_object_set_data_full(G_OBJECT(control.widget), kBoundsKey, kept,
                               [](gpointer data) { delete static_cast<KNativeRect*>(data); });
    }
    *kept = bounds;
    gtk_widget_set_size_request(control.widget, bounds.width, bounds.height);
    GtkWidget* overlay = control.window->overlay;
    if (!gtk_widget_get_parent(control.widget)) {
        g_signal_connect(overlay, "get-child-position", G_CALLBACK(onChildPosition), &control);
        gtk_overlay_add_overlay(GTK_OVERLAY(overlay), control.widget);
    }
    gtk_widget_queue_resize(overlay);
}

void kGtkSetStyledBackground(KGtkControlHandle& control, const KNativeColour& colour)
{
    KGtkStyledState& state = *control.styled;
    if (!state.background) {
        state.background = gtk_css_provider_new();
        gtk_style_context_add_provider(gtk_widget_get_style_context(control.inner),
                                       GTK_STYLE_PROVIDER(state.background), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    }
    char css[160];
    if (colour.transparent)
        std::snprintf(css, sizeof(css), "textview, textview text { background-color: transparent; }");
    else
        std::snprintf(css, sizeof(css), "textview, textview text { background-color: rgb(%d, %d, %d); }",
                      colour.red >> 8, colour.green >> 8, colour.blue >> 8);
    gtk_css_provider_load_from_data(state.background, css, -1, nullptr);
}

GtkWidget* kGtkMakeStyledText(KGtkControlHandle& control, const KNativeControlSetup& setup)
{
    control.styled = new KGtkStyledState();
    control.inner = gtk_text_view_new();
    GtkTextView* view = viewOf(control);
    gtk_text_view_set_wrap_mode(view, GTK_WRAP_WORD_CHAR);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view);
    g_signal_connect(buffer, "insert-text", G_CALLBACK(onInsertBefore), &control);
    g_signal_connect_after(buffer, "insert-text", G_CALLBACK(onInsertAfter), &control);
    g_signal_connect(buffer, "delete-range", G_CALLBACK(onDeleteBefore), &control);
    g_signal_connect(buffer, "mark-set", G_CALLBACK(onMarkSet), &control);
    g_signal_connect(control.inner, "button-press-event", G_CALLBACK(onViewPress), &control);
    g_signal_connect(control.inner, "popup-menu", G_CALLBACK(onPopupMenuKey), &control);
    // Over the page: no frame and no scroll bars; the view follows the
    // caret inside the element's rectangle.
    GtkWidget* window = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(window), GTK_SHADOW_NONE);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(window), GTK_POLICY_NEVER, GTK_POLICY_EXTERNAL);
    gtk_container_add(GTK_CONTAINER(window), control.inner);
    kGtkSetStyledBackground(control, setup.colour);
    load(control, setup.styledText);
    return window;
}

void kGtkDropStyledText(KGtkControlHandle& control)
{
    if (!control.styled)
        return;
    // The view may be gone already with its window.
    if (control.window && control.window->overlay && control.widget)
        g_signal_handlers_disconnect_by_data(control.window->overlay, &control);
    if (control.inner && control.widget) {
        g_signal_handlers_disconnect_by_data(control.inner, &control);
        g_signal_handlers_disconnect_by_data(bufferOf(control), &control);
    }
    if (control.styled->background)
        g_object_unref(control.styled->background);
    delete control.styled;
    control.styled = nullptr;
}

// --- The layer's operations ---------------------------------------------------------------

void KGtkNativeLayer::setControlStyledText(void* control, const KNativeStyledText& text)
{
    if (KGtkControlHandle* handle = styledHandle(control))
        load(*handle, text);
}

bool KGtkNativeLayer::controlStyledText(void* control, KNativeStyledText& text)
{
    KGtkControlHandle* handle = styledHandle(control);
    if (!handle)
        return false;
    text = read(*handle);
    return true;
}

void KGtkNativeLayer::selectControlText(void* control, int32_t start, int32_t length)
{
    KGtkControlHandle* handle = styledHandle(control);
    if (!handle)
        return;
    GtkTextBuffer* buffer = bufferOf(*handle);
    int32_t total = gtk_text_buffer_get_char_count(buffer);
    int32_t from = std::clamp(start, 0, total);
    int32_t to = from + std::clamp(length, 0, total - from);
    GtkTextIter bound;
    GtkTextIter caret;
    gtk_text_buffer_get_iter_at_offset(buffer, &bound, from);
    gtk_text_buffer_get_iter_at_offset(buffer, &caret, to);
    gtk_text_buffer_select_range(buffer, &caret, &bound);
}

bool KGtkNativeLayer::controlSelection(void* control, int32_t& start, int32_t& length)
{
    KGtkControlHandle* handle = styledHandle(control);
    if (!handle)
        return false;
    GtkTextIter from;
    GtkTextIter to;
    gtk_text_buffer_get_selection_bounds(bufferOf(*handle), &from, &to);
    start = gtk_text_iter_get_offset(&from);
    length = gtk_text_iter_get_offset(&to) - start;
    return true;
}

void KGtkNativeLayer::changeControlTextStyle(void* control, const KNativeStyleChange& change)
{
    KGtkControlHandle* handle = styledHandle(control);
    if (!handle)
        return;
    if (change.setAlignment)
        gtk_text_view_set_justification(viewOf(*handle), justificationOf(change.alignment));
    GtkTextBuffer* buffer = bufferOf(*handle);
    GtkTextIter from;
    GtkTextIter to;
    if (gtk_text_buffer_get_selection_bounds(buffer, &from, &to)) {
        Loading loading(*handle);
        changeRange(*handle, from, to, change);
        return;
    }
    KNativeTextStyle next = typingStyleAt(*handle, gtk_text_iter_get_offset(&from));
    applyChange(next, change);
    handle->styled->pending = next;
    handle->styled->hasPending = true;
}

void KGtkNativeLayer::sendControlKey(void* control, int32_t key, int32_t)
{
    KGtkControlHandle* handle = styledHandle(control);
    if (handle && gtk_widget_is_sensitive(handle->widget))
        typeKey(*handle, key);
}

void KGtkNativeLayer::focusControl(void* control)
{
    auto* handle = static_cast<KGtkControlHandle*>(control);
    if (!handle || !handle->widget)
        return;
    GtkWidget* target = handle->inner && handle->kind != KNativeControlKind::ColourSwatch
                                && handle->kind != KNativeControlKind::Picture
                            ? handle->inner
                            : handle->widget;
    gtk_widget_grab_focus(target);
}
