#include "graphics/native/KNativeDevice.h"

#include "graphics/KBoxFilter.h"
#include "graphics/native/KNativeText.h"
#include "graphics/native/KNativeTextLayout.h"

#include <cairo.h>
#include <pango/pangocairo.h>

namespace {

constexpr double kScreenResolution = 96.0;

void setColour(cairo_t* cr, uint32_t colour)
{
    cairo_set_source_rgb(cr, ((colour >> 16) & 0xFF) / 255.0, ((colour >> 8) & 0xFF) / 255.0, (colour & 0xFF) / 255.0);
}

// A copy of part of a surface, for drawing a device onto itself.
cairo_surface_t* snapshot(cairo_surface_t* source, const KWideRectangle& from)
{
    cairo_surface_t* copy
        = cairo_surface_create_similar_image(source, cairo_image_surface_get_format(source), from.width, from.height);
    cairo_t* cr = cairo_create(copy);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cr, source, -from.x, -from.y);
    cairo_paint(cr);
    cairo_destroy(cr);
    return copy;
}

} // namespace

KNativeDevice* KNativeDevice::createImage(int32_t width, int32_t height, Format format)
{
    if (width <= 0 || height <= 0)
        return nullptr;
    cairo_format_t cairoFormat = format == Format::Argb32 ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    cairo_surface_t* surface = cairo_image_surface_create(cairoFormat, width, height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    KNativeDevice* device = wrapSurface(surface);
    cairo_surface_destroy(surface);
    return device;
}

KNativeDevice* KNativeDevice::wrapSurface(cairo_surface_t* surface)
{
    if (!surface || cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    auto* device = new KNativeDevice();
    device->surface = cairo_surface_reference(surface);
    if (cairo_surface_get_type(surface) == CAIRO_SURFACE_TYPE_IMAGE) {
        cairo_format_t f = cairo_image_surface_get_format(surface);
        device->width = cairo_image_surface_get_width(surface);
        device->height = cairo_image_surface_get_height(surface);
        if (f == CAIRO_FORMAT_RGB24 || f == CAIRO_FORMAT_ARGB32) {
            device->format = f == CAIRO_FORMAT_ARGB32 ? Format::Argb32 : Format::Rgb24;
            device->pixels.data = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(surface));
            device->pixels.stride = cairo_image_surface_get_stride(surface) / 4;
            device->pixels.width = device->width;
            device->pixels.height = device->height;
        }
    } else {
        double x1, y1, x2, y2;
        cairo_t* cr = cairo_create(surface);
        cairo_clip_extents(cr, &x1, &y1, &x2, &y2);
        cairo_destroy(cr);
        device->width = int32_t(x2 - x1);
        device->height = int32_t(y2 - y1);
    }
    return device;
}

KNativeDevice* KNativeDevice::wrapContext(cairo_t* context, int32_t width, int32_t height, double dpiX, double dpiY)
{
    if (!context || cairo_status(context) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    auto* device = new KNativeDevice();
    device->givenContext = cairo_reference(context);
    device->surface = cairo_surface_reference(cairo_get_target(context));
    device->width = width;
    device->height = height;
    device->dpiX = dpiX;
    device->dpiY = dpiY;
    return device;
}

KNativeDevice::~KNativeDevice()
{
    if (givenContext)
        cairo_destroy(givenContext);
    if (surface)
        cairo_surface_destroy(surface);
}

bool KNativeDevice::beginPixels(KPixelBuffer& out)
{
    if (!pixels.isValid())
        return false;
    cairo_surface_flush(surface);
    out = pixels;
    return true;
}

void KNativeDevice::endPixels(const KWideRectangle& changed)
{
    if (!changed.isEmpty())
        cairo_surface_mark_dirty_rectangle(surface, changed.x, changed.y, changed.width, changed.height);
}

cairo_t* KNativeDevice::openContext(const KClipRectangles& clip)
{
    cairo_t* cr;
    if (givenContext) {
        cr = givenContext;
        cairo_save(cr);
    } else {
        cr = cairo_create(surface);
    }
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
    for (const KWideRectangle& r : clip.items())
        cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    cairo_clip(cr);
    return cr;
}

void KNativeDevice::closeContext(cairo_t* cr)
{
    if (cr == givenContext)
        cairo_restore(cr);
    else
        cairo_destroy(cr);
}

void KNativeDevice::fillSpans(const std::vector<KSpan>& spans, KPenOp op, uint32_t colour)
{
    if (spans.empty())
        return;
    cairo_t* cr = givenContext ? givenContext : cairo_create(surface);
    if (givenContext)
        cairo_save(cr);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
    for (const KSpan& s : spans)
        cairo_rectangle(cr, s.x0, s.y, s.x1 - s.x0, 1);
    if (op == KPenOp::Invert) {
        cairo_set_operator(cr, CAIRO_OPERATOR_DIFFERENCE);
        cairo_set_source_rgb(cr, 1, 1, 1);
    } else {
        cairo_set_operator(cr, givenContext ? CAIRO_OPERATOR_OVER : CAIRO_OPERATOR_SOURCE);
        setColour(cr, colour);
    }
    cairo_fill(cr);
    closeContext(cr);
}

void KNativeDevice::paintFrom(const KNativeDevice& source, const KWideRectangle& from, const KWideRectangle& to,
                              const KClipRectangles& clip, Filter filter, bool over, double alpha)
{
    if (from.isEmpty() || to.isEmpty() || clip.isEmpty() || !source.surface)
        return;
    // A sub-surface keeps the filter from pulling in pixels beyond `from`;
    // drawing a device onto itself goes through a copy.
    // Only the part of `from` that lies on the source is drawn, at the
    // place it maps to.
    KWideRectangle inside = from, target = to;
    if (!KBoxFilter::clipToSource(KWideRectangle(0, 0, source.width, source.height), inside, target))
        return;
    cairo_surface_t* area;
    if (&source == this)
        area = snapshot(source.surface, inside);
    else
        area = cairo_surface_create_for_rectangle(source.surface, inside.x, inside.y, inside.width, inside.height);

    cairo_t* cr = openContext(clip);
    cairo_rectangle(cr, target.x, target.y, target.width, target.height);
    cairo_clip(cr);
    cairo_translate(cr, target.x, target.y);
    cairo_scale(cr, double(target.width) / inside.width, double(target.height) / inside.height);
    cairo_set_source_surface(cr, area, 0, 0);
    cairo_pattern_t* pattern = cairo_get_source(cr);
    cairo_pattern_set_filter(pattern, filter == Filter::Smooth ? CAIRO_FILTER_GOOD : CAIRO_FILTER_NEAREST);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_set_operator(cr, over ? CAIRO_OPERATOR_OVER : CAIRO_OPERATOR_SOURCE);
    if (alpha >= 1.0)
        cairo_paint(cr);
    else
        cairo_paint_with_alpha(cr, alpha);
    closeContext(cr);
    cairo_surface_destroy(area);
    cairo_surface_flush(surface);
}

void KNativeDevice::drawText(const std::string& utf8, int32_t x, int32_t y, const KNativeFont* font, int32_t face,
                             uint32_t colour, const KClipRectangles& clip)
{
    if (utf8.empty() || clip.isEmpty())
        return;
    cairo_t* cr = openContext(clip);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_GRAY);
    setColour(cr, colour);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    PangoLayout* layout = kCreateTextLayout(cr, utf8, font, face);
    // A given context (a print job's) is measured in its own dots, so a
    // point of type is as big there as on paper.
    double resolution = givenContext && dpiY > 0 ? dpiY : kScreenResolution;
    pango_cairo_context_set_resolution(pango_layout_get_context(layout), resolution);
    pango_layout_context_changed(layout);
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout);
    g_object_unref(layout);
    closeContext(cr);
    cairo_surface_flush(surface);
}

void KNativeDevice::drawTextLayout(const KNativeTextLayout& layout, double x, double y, double scaleX, double scaleY,
                                   const KClipRectangles& clip)
{
    if (clip.isEmpty() || !(scaleX > 0.0) || !(scaleY > 0.0))
        return;
    cairo_t* cr = openContext(clip);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_GRAY);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_translate(cr, x, y);
    cairo_scale(cr, scaleX, scaleY);
    cairo_move_to(cr, 0, 0);
    layout.show(cr);
    closeContext(cr);
    cairo_surface_flush(surface);
}
