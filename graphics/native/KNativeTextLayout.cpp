#include "graphics/native/KNativeTextLayout.h"

#include "graphics/KFont.h"

#include <algorithm>
#include <cairo.h>
#include <glib.h>
#include <pango/pangocairo.h>
#include <utility>

namespace {

constexpr double kScreenResolution = 96.0;

// One context for every block layout. Unhinted metrics and unrounded glyph
// positions make advances proportional to the font size, so that a block
// scaled with its fonts wraps at the same places, and a layout drawn under a
// scaled transform keeps its line breaks.
PangoContext* layoutContext()
{
    static PangoContext* context = nullptr;
    if (!context) {
        context = pango_font_map_create_context(pango_cairo_font_map_get_default());
        pango_cairo_context_set_resolution(context, kScreenResolution);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        pango_cairo_context_set_font_options(context, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(context, FALSE);
    }
    return context;
}

const PangoFontDescription* description(const KNativeFont* font)
{
    return reinterpret_cast<const PangoFontDescription*>(font);
}

double pixels(int units) { return double(units) / PANGO_SCALE; }

// The 8-bit channel as pango's 16 bits, so that cairo gets exactly the
// value the device would paint.
guint16 channel(uint32_t colour, int shift) { return guint16(((colour >> shift) & 0xFF) * 257); }

void insertSpanned(PangoAttrList* list, PangoAttribute* attribute, const KNativeTextSpan& span)
{
    attribute->start_index = guint(std::max(span.startByte, 0));
    attribute->end_index = span.endByte < 0 ? PANGO_ATTR_INDEX_TO_TEXT_END : guint(span.endByte);
    pango_attr_list_insert(list, attribute);
}

PangoAttrList* attributesOf(const std::vector<KNativeTextSpan>& spans)
{
    PangoAttrList* list = pango_attr_list_new();
    for (const KNativeTextSpan& span : spans) {
        if (span.font)
            insertSpanned(list, pango_attr_font_desc_new(description(span.font)), span);
        if (span.face & KFont::Underline)
            insertSpanned(list, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), span);
        if (span.face & KFont::Strikeout)
            insertSpanned(list, pango_attr_strikethrough_new(TRUE), span);
        insertSpanned(
            list, pango_attr_foreground_new(channel(span.colour, 16), channel(span.colour, 8), channel(span.colour, 0)),
            span);
    }
    return list;
}

} // namespace

KNativeTextLayout::KNativeTextLayout()
    : layout(pango_layout_new(layoutContext()))
{
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_width(layout, -1);
}

KNativeTextLayout::~KNativeTextLayout() { g_object_unref(layout); }

void KNativeTextLayout::setText(const std::string& utf8, const std::vector<KNativeTextSpan>& spans)
{
    text = utf8;
    if (!spans.empty() && spans.front().font)
        pango_layout_set_font_description(layout, description(spans.front().font));
    pango_layout_set_text(layout, text.data(), int(text.size()));
    PangoAttrList* list = attributesOf(spans);
    pango_layout_set_attributes(layout, list);
    pango_attr_list_unref(list);
}

void KNativeTextLayout::setWidth(double width)
{
    pango_layout_set_width(layout, width > 0.0 ? int(width * PANGO_SCALE) : -1);
}

void KNativeTextLayout::setAlignment(Alignment alignment)
{
    pango_layout_set_justify(layout, alignment == Alignment::Justify);
    PangoAlignment native = PANGO_ALIGN_LEFT;
    if (alignment == Alignment::Centre)
        native = PANGO_ALIGN_CENTER;
    else if (alignment == Alignment::Right)
        native = PANGO_ALIGN_RIGHT;
    pango_layout_set_alignment(layout, native);
}

double KNativeTextLayout::getWidth() const
{
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return pixels(logical.width);
}

double KNativeTextLayout::getHeight() const
{
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return pixels(logical.height);
}

std::vector<int32_t> KNativeTextLayout::getLineStarts() const
{
    std::vector<int32_t> starts;
    for (GSList* l = pango_layout_get_lines_readonly(layout); l; l = l->next)
        starts.push_back(static_cast<PangoLayoutLine*>(l->data)->start_index);
    return starts;
}

std::vector<KNativeTextBox> KNativeTextLayout::getRangeBoxes(int32_t start, int32_t end, bool toEdge) const
{
    std::vector<KNativeTextBox> boxes;
    if (start >= end)
        return boxes;
    PangoLayoutIter* iter = pango_layout_get_iter(layout);
    do {
        PangoLayoutLine* line = pango_layout_iter_get_line_readonly(iter);
        int32_t lineStart = line->start_index;
        int32_t lineEnd = lineStart + line->length;
        if (lineStart >= end)
            break;
        // An empty line is marked only as part of a selection running
        // through it.
        bool touched = lineEnd > lineStart ? start < lineEnd : toEdge && start <= lineStart;
        if (!touched)
            continue;
        int y0 = 0, y1 = 0;
        pango_layout_iter_get_line_yrange(iter, &y0, &y1);
        addLineBoxes(boxes, line, start, end, toEdge, pixels(y0), pixels(y1 - y0));
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);
    return boxes;
}

void KNativeTextLayout::addLineBoxes(std::vector<KNativeTextBox>& boxes, PangoLayoutLine* line, int32_t start,
                                     int32_t end, bool toEdge, double y, double height) const
{
    if (!toEdge) {
        // The line's own characters; blanks at a wrap are left out when the
        // range goes on to the next line.
        int32_t lineStart = line->start_index;
        int32_t lineEnd = lineStart + line->length;
        start = std::max(start, lineStart);
        bool goesOn = end > lineEnd;
        end = std::min(end, lineEnd);
        while (goesOn && end > start && (text[size_t(end - 1)] == ' ' || text[size_t(end - 1)] == '\t'))
            --end;
        if (start >= end)
            return;
    }
    int* ranges = nullptr;
    int count = 0;
    pango_layout_line_get_x_ranges(line, start, end, &ranges, &count);
    // Ranges that touch (the characters and the gap to the edge) make one
    // box.
    std::vector<std::pair<int, int>> spans;
    for (int i = 0; i < count; ++i) {
        if (ranges[2 * i + 1] > ranges[2 * i])
            spans.emplace_back(ranges[2 * i], ranges[2 * i + 1]);
    }
    g_free(ranges);
    std::sort(spans.begin(), spans.end());
    for (size_t i = 0; i < spans.size(); ++i) {
        int x0 = spans[i].first, x1 = spans[i].second;
        while (i + 1 < spans.size() && spans[i + 1].first <= x1)
            x1 = std::max(x1, spans[++i].second);
        boxes.push_back({ pixels(x0), y, pixels(x1 - x0), height });
    }
}

int32_t KNativeTextLayout::getIndexAt(double x, double y, bool& trailing) const
{
    int index = 0, trail = 0;
    pango_layout_xy_to_index(layout, int(x * PANGO_SCALE), int(y * PANGO_SCALE), &index, &trail);
    trailing = trail > 0;
    return index;
}

KNativeTextBox KNativeTextLayout::getCursorBox(int32_t index) const
{
    PangoRectangle strong;
    pango_layout_get_cursor_pos(layout, std::clamp<int32_t>(index, 0, int32_t(text.size())), &strong, nullptr);
    return { pixels(strong.x), pixels(strong.y), pixels(strong.width), pixels(strong.height) };
}

void KNativeTextLayout::show(cairo_t* context) const { pango_cairo_show_layout(context, layout); }
