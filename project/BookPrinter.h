#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KString.h"
#include "project/BookLayout.h"
#include "tape/TapeForward.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class KGraphicDevice;
class KImage;

// A story printed as a book: each page transition opens a new picture, and
// the pictures go 1, 2, 4 or 9 to a sheet, a footer line under them.
//
// Contract:
// - Picture k shows the page just before the k-th page transition (the
//   page the reader had in front of them), then the page at the end of the
//   tape. A transition that is the first element adds no picture (nothing
//   stood before it), and a transition at the end adds no blank one; a tape
//   of nothing but that still prints one picture.
// - Pictures come from a source that draws the page at a tape position
//   with its actors; the printer only places them.
// - While a book prints, the page transitions leave colour or image
//   backgrounds white as the options say.
class BookPrinter {
public:
    struct Options {
        int32_t perSheet = 4;
        bool withoutColourBackgrounds = true;
        bool withoutImageBackgrounds = false;
    };
    // Fills the image with the page at the position; false when it cannot.
    using PictureSource = std::function<bool(int32_t position, KImage& picture)>;

    static constexpr double kFooterPoints = 12.0;

    BookPrinter(const Options& options, std::vector<int32_t> positions, PictureSource source, KString footerText);

    // The tape positions of a book's pictures, in order.
    static std::vector<int32_t> picturePositions(const Tape& tape);

    int32_t getPictureCount() const { return int32_t(positions.size()); }
    int32_t getSheetCount() const { return BookLayout::sheetCount(getPictureCount(), options.perSheet); }
    const Options& getOptions() const { return options; }

    // Sheet `sheet` (counted from 1) on the device. The picture of a cell
    // that cannot be drawn stays white.
    void printSheet(KGraphicDevice& device, const KGraphicRectangle& printable, int32_t sheet);
    // The whole book into a PDF file of sheets of the size (in points), at
    // the printer's resolution and with the default margins; false with
    // the reason when the file cannot be written.
    bool printToPdf(const std::string& path, double widthPoints, double heightPoints, std::string& reason);
    // One page alone, centred above its footer.
    static void printOnePage(KGraphicDevice& device, const KGraphicRectangle& printable, KImage& picture,
                             const KString& footerText);

    // The height of a footer line on the device, in its dots.
    static int32_t footerHeight(const KGraphicDevice& device);
    static void drawFooter(KGraphicDevice& device, const KGraphicRectangle& printable, const KString& text);
    // Draws the picture stretched over the rectangle.
    static void drawPicture(KGraphicDevice& device, KImage& picture, const KGraphicRectangle& where);

private:
    Options options;
    std::vector<int32_t> positions;
    PictureSource source;
    KString footerText;
};

// Sets the book's background options for the tape's transitions while it
// lives.
class BookBackgroundsScope {
public:
    explicit BookBackgroundsScope(const BookPrinter::Options& options);
    ~BookBackgroundsScope();
    BookBackgroundsScope(const BookBackgroundsScope&) = delete;
    BookBackgroundsScope& operator=(const BookBackgroundsScope&) = delete;
};
