#pragma once

#include "graphics/KGraphicRectangle.h"
#include "kernel/KString.h"
#include "kernel/KThing.h"
#include "windowing/KNativeTypes.h"

#include <functional>
#include <string>

// The page set-up and the print jobs. A job's sheets are drawn by the
// application's `doPrintPage` (or a printer given for the job) on a device
// of the paper in dots of `kDotsPerInch`, inside the rectangle the margins
// leave. The margins are the user's, kept in the "PrinterMargins" group.
//
// TALELOOM_PRINT_TO names a PDF file that jobs are written to instead of a
// printer, without a dialog.
class KPrintingManager : public KThing {
    K_DECLARE_CLASS(KPrintingManager)
public:
    static constexpr double kDotsPerInch = 300.0;
    // Margins are in hundredths of a millimetre; dividing by 2500 rather
    // than 2540 makes them a little wider than asked, as they always were.
    static constexpr int32_t kMarginDivisor = 2500;
    static constexpr const char* kMarginsGroup = "PrinterMargins";

    using SheetPrinter = std::function<void(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t page)>;

    KPrintingManager();
    ~KPrintingManager() override;

    // The program's one manager.
    static KPrintingManager& get();

    // The page set-up dialog; the margins are stored when it is accepted.
    void doPageSetup();
    // Runs a job of `pages` sheets; true when it ran. A cancel is quiet; a
    // failure or margins that leave less than an inch are told in an alert.
    bool print(const KString& title, int32_t pages, bool showDialog, const SheetPrinter& printer = {});
    bool isLandscape() const;
    // The printable rectangle of the paper the next job uses.
    KGraphicRectangle getPrintableRectangle() const;

    static KNativePrintMargins readMargins();
    static void writeMargins(const KNativePrintMargins& margins);
    // The area inside the margins of a sheet of `width` by `height` dots.
    static KGraphicRectangle printableRectangleOf(int32_t width, int32_t height, double dpiX, double dpiY,
                                                  const KNativePrintMargins& margins);
    // Whether the area leaves at least an inch each way.
    static bool isUsable(const KGraphicRectangle& printable, double dpiX, double dpiY);

private:
    void printSheet(KNativeDevice* native, int32_t page, const SheetPrinter& printer);
};
