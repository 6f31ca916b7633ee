#include "project/BookPrinter.h"

#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KImage.h"
#include "graphics/KPdfDocument.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeObject.h"
#include "windowing/KPrintingManager.h"

#include <algorithm>
#include <cmath>

namespace {

// Font metrics are given at the screen's resolution.
constexpr double kScreenDotsPerInch = 96.0;
// The sample line whose height makes the footer's: it has capitals and
// descenders.
const char* const kFooterSample = "TESTpSTRINg";

bool isTransition(const Tape& tape, int32_t index)
{
    TapeObject* element = tape.getAt(index);
    return element && element->getType() == PageTransitionType;
}

// The footer's font. The device's own resolution sizes the text it draws;
// measures are taken at the screen's and scaled.
KFontPtr footerFont()
{
    KFontPtr font(new KFont());
    font->setSize(BookPrinter::kFooterPoints);
    return font;
}

// Text on an image is drawn at the screen's resolution, on a print job's
// context at the job's.
double screenToDevice(const KGraphicDevice& device)
{
    if (device.hasPixelAccess() || !(device.getResolutionY() > 0))
        return 1.0;
    return device.getResolutionY() / kScreenDotsPerInch;
}

} // namespace

BookPrinter::BookPrinter(const Options& chosen, std::vector<int32_t> picturePositions, PictureSource pictureSource,
                         KString footer)
    : options(chosen)
    , positions(std::move(picturePositions))
    , source(std::move(pictureSource))
    , footerText(std::move(footer))
{
    options.perSheet = BookLayout::validPerSheet(options.perSheet);
}

std::vector<int32_t> BookPrinter::picturePositions(const Tape& tape)
{
    std::vector<int32_t> found;
    int32_t count = tape.getCount();
    for (int32_t index = 1; index < count; ++index) {
        if (isTransition(tape, index))
            found.push_back(index);
    }
    if (count == 0 || !isTransition(tape, count - 1) || found.empty())
        found.push_back(count);
    return found;
}

void BookPrinter::printSheet(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t sheet)
{
    int32_t footer = footerHeight(device);
    int32_t first = (sheet - 1) * options.perSheet + 1;
    int32_t last = std::min(sheet * options.perSheet, getPictureCount());
    BookBackgroundsScope backgrounds(options);
    for (int32_t picture = first; picture <= last; ++picture) {
        KImagePtr image(new KImage());
        if (!source || !source(positions[size_t(picture - 1)], *image) || !image->hasImage())
            continue;
        KGraphicRectangle cell = BookLayout::cell(printable, footer, options.perSheet, picture);
        drawPicture(device, *image, BookLayout::fitInto(image->getSize(), cell));
    }
    drawFooter(device, printable, footerText);
}

bool BookPrinter::printToPdf(const std::string& path, double widthPoints, double heightPoints, std::string& reason)
{
    KPdfDocument pdf(path, widthPoints, heightPoints, KPrintingManager::kDotsPerInch);
    if (!pdf.isOpen()) {
        reason = path + ": the file could not be created";
        return false;
    }
    KGraphicRectangle printable = KPrintingManager::printableRectangleOf(
        pdf.getWidthDots(), pdf.getHeightDots(), KPrintingManager::kDotsPerInch, KPrintingManager::kDotsPerInch,
        KNativePrintMargins());
    for (int32_t sheet = 1; sheet <= getSheetCount(); ++sheet) {
        KGraphicDevice* device = pdf.beginPage();
        if (!device)
            break;
        printSheet(*device, printable, sheet);
        pdf.endPage();
    }
    std::string error;
    if (!pdf.finish(error)) {
        reason = path + ": " + error;
        return false;
    }
    return true;
}

void BookPrinter::printOnePage(KGraphicDevice& device, const KGraphicRectangle& printable, KImage& picture,
                               const KString& footerText)
{
    if (picture.hasImage())
        drawPicture(device, picture, BookLayout::onePage(printable, footerHeight(device), picture.getSize()));
    drawFooter(device, printable, footerText);
}

int32_t BookPrinter::footerHeight(const KGraphicDevice& device)
{
    KWideSize size = footerFont()->measureString(KString(kFooterSample));
    return int32_t(std::ceil(size.height * screenToDevice(device)));
}

void BookPrinter::drawFooter(KGraphicDevice& device, const KGraphicRectangle& printable, const KString& text)
{
    if (text.isEmpty())
        return;
    KFontPtr font = footerFont();
    KGraphicRectangle line = BookLayout::footer(printable, footerHeight(device));
    int32_t width = int32_t(std::ceil(font->measureString(text).width * screenToDevice(device)));
    KGraphicStateGuard guard(device);
    device.setFont(*font);
    device.setForeground(KColor(KColor::Black));
    device.drawString(text, KGraphicPoint(int16_t(line.x + std::max(0, (line.width - width) / 2)), line.y));
}

void BookPrinter::drawPicture(KGraphicDevice& device, KImage& picture, const KGraphicRectangle& where)
{
    if (where.isEmpty())
        return;
    KGraphicSize size = picture.getSize();
    picture.getDevice().copyTo(device, KGraphicRectangle(0, 0, size.width, size.height), where);
}

BookBackgroundsScope::BookBackgroundsScope(const BookPrinter::Options& options)
{
    TapeHost::setBookBackgrounds(options.withoutColourBackgrounds, options.withoutImageBackgrounds);
}

BookBackgroundsScope::~BookBackgroundsScope() { TapeHost::setBookBackgrounds(false, false); }
