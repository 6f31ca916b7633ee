#include "graphics/KPdfDocument.h"

#include "graphics/KGraphicDevice.h"
#include "graphics/native/KNativeDevice.h"

#include <cairo-pdf.h>
#include <cairo.h>

#include <cmath>

struct KPdfDocument::Native {
    cairo_surface_t* surface = nullptr;
    cairo_t* context = nullptr;
    KGraphicDevicePtr page;
    double dotsPerInch = 300.0;
    int32_t widthDots = 0;
    int32_t heightDots = 0;
};

KPdfDocument::KPdfDocument(const std::string& path, double widthPoints, double heightPoints, double dotsPerInch)
    : native(std::make_unique<Native>())
{
    native->dotsPerInch = dotsPerInch > 0 ? dotsPerInch : 300.0;
    native->widthDots = int32_t(std::lround(widthPoints * native->dotsPerInch / 72.0));
    native->heightDots = int32_t(std::lround(heightPoints * native->dotsPerInch / 72.0));
    native->surface = cairo_pdf_surface_create(path.c_str(), widthPoints, heightPoints);
    if (cairo_surface_status(native->surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(native->surface);
        native->surface = nullptr;
        return;
    }
    native->context = cairo_create(native->surface);
}

KPdfDocument::~KPdfDocument()
{
    native->page = nullptr;
    if (native->context)
        cairo_destroy(native->context);
    if (native->surface)
        cairo_surface_destroy(native->surface);
}

bool KPdfDocument::isOpen() const { return native->context && cairo_status(native->context) == CAIRO_STATUS_SUCCESS; }

int32_t KPdfDocument::getWidthDots() const { return native->widthDots; }
int32_t KPdfDocument::getHeightDots() const { return native->heightDots; }

KGraphicDevice* KPdfDocument::beginPage()
{
    if (!isOpen())
        return nullptr;
    endPage();
    cairo_save(native->context);
    double scale = 72.0 / native->dotsPerInch;
    cairo_scale(native->context, scale, scale);
    native->page = new KGraphicDevice();
    native->page->attachNativeDevice(KNativeDevice::wrapContext(native->context, native->widthDots, native->heightDots,
                                                                native->dotsPerInch, native->dotsPerInch));
    return native->page.get();
}

void KPdfDocument::endPage()
{
    if (!native->page)
        return;
    native->page = nullptr;
    cairo_restore(native->context);
    cairo_show_page(native->context);
}

bool KPdfDocument::finish(std::string& error)
{
    if (!native->surface) {
        error = "the file could not be created";
        return false;
    }
    endPage();
    cairo_surface_finish(native->surface);
    cairo_status_t status = cairo_surface_status(native->surface);
    if (status != CAIRO_STATUS_SUCCESS) {
        error = cairo_status_to_string(status);
        return false;
    }
    return true;
}
