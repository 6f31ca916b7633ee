#pragma once

#include "graphics/KClipRectangles.h"
#include "graphics/KPixelBuffer.h"
#include "graphics/KSpanList.h"
#include "graphics/KSpanPainter.h"

#include <cstdint>
#include <string>

// cairo's own types, declared so that code outside graphics/native can hand
// surfaces and contexts in without including cairo.
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

// The native side of a KGraphicDevice: a cairo image surface (an image's
// bitmap, a window's back buffer) with direct access to its pixels, or a
// cairo context given by someone else (a print job), which is drawn on with
// cairo's own means and cannot be read.
class KNativeDevice {
public:
    enum class Format : int32_t { Rgb24 = 0, Argb32 = 1 };
    enum class Filter : int32_t { Exact = 0, Smooth = 1 };

    // A new image surface, all black (transparent for ARGB32); null when
    // the size is empty or the memory cannot be had.
    static KNativeDevice* createImage(int32_t width, int32_t height, Format format = Format::Rgb24);
    // Wraps a surface, adding a reference. An image surface gives pixel
    // access; any other kind is drawn on through a context.
    static KNativeDevice* wrapSurface(cairo_surface_t* surface);
    // Wraps a context of the given size in device units, adding a reference.
    static KNativeDevice* wrapContext(cairo_t* context, int32_t width, int32_t height, double dpiX, double dpiY);
    ~KNativeDevice();

    KNativeDevice(const KNativeDevice&) = delete;
    KNativeDevice& operator=(const KNativeDevice&) = delete;

    int32_t getWidth() const { return width; }
    int32_t getHeight() const { return height; }
    Format getFormat() const { return format; }
    double getResolutionX() const { return dpiX; }
    double getResolutionY() const { return dpiY; }
    cairo_surface_t* getSurface() const { return surface; }

    // Direct pixel access. begin flushes what cairo has pending and fills
    // the view; end tells cairo which pixels changed behind its back.
    bool hasPixels() const { return pixels.isValid(); }
    bool beginPixels(KPixelBuffer& out);
    void endPixels(const KWideRectangle& changed);

    // Fills clipped runs through cairo, for targets without pixel access.
    void fillSpans(const std::vector<KSpan>& spans, KPenOp op, uint32_t colour);

    // Draws part of another device (or of this one) over a rectangle,
    // clipped: copied with OPERATOR_SOURCE, or composited "over" with a
    // constant alpha. A smooth filter is a box filter when shrinking.
    void paintFrom(const KNativeDevice& source, const KWideRectangle& from, const KWideRectangle& to,
                   const KClipRectangles& clip, Filter filter, bool over, double alpha);

    // Draws UTF-8 text with its top left corner at (x, y), antialiased.
    void drawText(const std::string& utf8, int32_t x, int32_t y, const KNativeFont* font, int32_t face, uint32_t colour,
                  const KClipRectangles& clip);

    // Shows a text layout with its top left corner at (x, y), scaled by the
    // factors, antialiased; the layout stays as it was laid out.
    void drawTextLayout(const KNativeTextLayout& layout, double x, double y, double scaleX, double scaleY,
                        const KClipRectangles& clip);

private:
    KNativeDevice() = default;
    // A context on the target, clipped; the caller destroys or restores it.
    cairo_t* openContext(const KClipRectangles& clip);
    void closeContext(cairo_t* context);

    cairo_surface_t* surface = nullptr;
    cairo_t* givenContext = nullptr;
    KPixelBuffer pixels;
    Format format = Format::Rgb24;
    int32_t width = 0;
    int32_t height = 0;
    double dpiX = 96.0;
    double dpiY = 96.0;
};
