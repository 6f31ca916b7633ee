#include "windowing/KPrintingManager.h"

#include "graphics/KGraphicDevice.h"
#include "kernel/KClass.h"
#include "kernel/KPreferences.h"
#include "kernel/KTextCodec.h"
#include "windowing/KAlert.h"
#include "windowing/KApplication.h"
#include "windowing/KBusyCursor.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

int16_t narrow(int64_t value) { return int16_t(std::clamp<int64_t>(value, INT16_MIN, INT16_MAX)); }

std::string textOf(const KString& text) { return text.isEmpty() ? std::string() : std::string(text.getText()); }

std::string exportTarget()
{
    const char* path = std::getenv("TALELOOM_PRINT_TO");
    return path && *path ? std::string(path) : std::string();
}

// The sheet in dots of the paper the next job uses.
bool paperDots(int32_t& width, int32_t& height)
{
    double widthPoints = 0, heightPoints = 0;
    if (!KNativeLayer::get().printPaperSize(widthPoints, heightPoints))
        return false;
    width = int32_t(std::lround(widthPoints * KPrintingManager::kDotsPerInch / 72.0));
    height = int32_t(std::lround(heightPoints * KPrintingManager::kDotsPerInch / 72.0));
    return width > 0 && height > 0;
}

} // namespace

K_DEFINE_CLASS(KPrintingManager, KThing)

KPrintingManager::KPrintingManager() = default;
KPrintingManager::~KPrintingManager() = default;

KPrintingManager& KPrintingManager::get()
{
    static KPtr<KPrintingManager> manager(new KPrintingManager());
    return *manager;
}

KNativePrintMargins KPrintingManager::readMargins()
{
    KNativePrintMargins margins;
    KPreferences stored;
    if (!stored.load(kMarginsGroup))
        return margins;
    auto take = [&](const char* key, int32_t& value) {
        if (stored.has(key))
            value = std::max<int32_t>(stored.getLong(key), 0);
    };
    take("Left", margins.left);
    take("Top", margins.top);
    take("Right", margins.right);
    take("Bottom", margins.bottom);
    return margins;
}

void KPrintingManager::writeMargins(const KNativePrintMargins& margins)
{
    KPreferences stored;
    stored.setLong("Left", margins.left);
    stored.setLong("Top", margins.top);
    stored.setLong("Right", margins.right);
    stored.setLong("Bottom", margins.bottom);
    stored.save(kMarginsGroup);
}

KGraphicRectangle KPrintingManager::printableRectangleOf(int32_t width, int32_t height, double dpiX, double dpiY,
                                                         const KNativePrintMargins& margins)
{
    auto dots = [](int32_t margin, double dpi) { return int64_t(margin * dpi / kMarginDivisor); };
    int64_t left = dots(margins.left, dpiX);
    int64_t top = dots(margins.top, dpiY);
    int64_t right = width - dots(margins.right, dpiX);
    int64_t bottom = height - dots(margins.bottom, dpiY);
    return KGraphicRectangle(narrow(left), narrow(top), narrow(std::max<int64_t>(right - left, 0)),
                             narrow(std::max<int64_t>(bottom - top, 0)));
}

bool KPrintingManager::isUsable(const KGraphicRectangle& printable, double dpiX, double dpiY)
{
    return printable.width >= dpiX && printable.height >= dpiY;
}

void KPrintingManager::doPageSetup()
{
    KNativePageSetupRequest request;
    request.title = textOf(kTranslate("Page Setup"));
    request.marginsLabel = textOf(kTranslate("Margins (mm)"));
    request.sideLabels[0] = textOf(kTranslate("Left"));
    request.sideLabels[1] = textOf(kTranslate("Top"));
    request.sideLabels[2] = textOf(kTranslate("Right"));
    request.sideLabels[3] = textOf(kTranslate("Bottom"));
    request.margins = readMargins();
    if (KNativeLayer::get().runPageSetup(request))
        writeMargins(request.margins);
}

bool KPrintingManager::isLandscape() const { return KNativeLayer::get().isPrintLandscape(); }

KGraphicRectangle KPrintingManager::getPrintableRectangle() const
{
    int32_t width = 0, height = 0;
    if (!paperDots(width, height))
        return KGraphicRectangle();
    return printableRectangleOf(width, height, kDotsPerInch, kDotsPerInch, readMargins());
}

bool KPrintingManager::print(const KString& title, int32_t pages, bool showDialog, const SheetPrinter& printer)
{
    KGraphicRectangle printable = getPrintableRectangle();
    if (!isUsable(printable, kDotsPerInch, kDotsPerInch)) {
        alert(kTranslate("TaleLoom"), kTranslate("The margins leave less than an inch (2.5 cm) of paper to print on. "
                                                 "Please make them smaller in Page Setup."));
        return false;
    }
    KNativePrintJob job;
    job.title = textOf(title);
    job.pages = std::max(pages, 1);
    job.exportPath = exportTarget();
    job.showDialog = showDialog && job.exportPath.empty();
    job.dotsPerInch = kDotsPerInch;
    job.drawPage = [&](KNativeDevice* native, int32_t page) { printSheet(native, page, printer); };
    std::string error;
    int32_t outcome = KNativeLayer::get().runPrintJob(job, error);
    if (outcome == KNativePrintJob::Failed) {
        alert(kTranslate("TaleLoom"),
              kTranslate("The story could not be printed: %1").withArguments({ KTextCodec::fromUtf8(error) }));
    }
    return outcome == KNativePrintJob::Printed;
}

// Each sheet gets the rectangle its own paper leaves: the dialog may have
// changed the paper since the job was planned.
void KPrintingManager::printSheet(KNativeDevice* native, int32_t page, const SheetPrinter& printer)
{
    KGraphicDevicePtr device(new KGraphicDevice());
    device->attachNativeDevice(native);
    if (!device->hasNativeDevice())
        return;
    const KGraphicRectangle& bounds = device->getBounds();
    KGraphicRectangle printable
        = printableRectangleOf(bounds.width, bounds.height, kDotsPerInch, kDotsPerInch, readMargins());
    if (printer)
        printer(*device, printable, page);
    else if (KApplication* application = KApplication::current())
        application->doPrintPage(*device, printable, page);
}
