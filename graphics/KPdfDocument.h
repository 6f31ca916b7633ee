#pragma once

#include "graphics/KGraphicsForward.h"

#include <memory>
#include <string>

// A PDF file written a page at a time. Each page is a graphic device in
// dots of the document's resolution, as a print job's context is, so that
// the same drawing code makes paper and files.
class KPdfDocument {
public:
    // Sheets of `widthPoints` by `heightPoints` (a point is 1/72 inch).
    KPdfDocument(const std::string& path, double widthPoints, double heightPoints, double dotsPerInch);
    ~KPdfDocument();
    KPdfDocument(const KPdfDocument&) = delete;
    KPdfDocument& operator=(const KPdfDocument&) = delete;

    // False when the file could not be started.
    bool isOpen() const;
    // The device of a new page, valid until `endPage`; null when the
    // document is not open.
    KGraphicDevice* beginPage();
    void endPage();
    // Writes the file out; false, with the reason, when it failed.
    bool finish(std::string& error);

    int32_t getWidthDots() const;
    int32_t getHeightDots() const;

private:
    struct Native;
    std::unique_ptr<Native> native;
};
