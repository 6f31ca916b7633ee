// A story as a book: where its pictures come from on the tape, where they
// go on a sheet, and what a sheet looks like drawn into a small image.

#include "tests/project/ProjectTestSupport.h"

#include "graphics/KImage.h"
#include "project/BookLayout.h"
#include "project/BookPrinter.h"
#include "windowing/KPrintingManager.h"

#include <gtest/gtest.h>

#include <map>

using namespace projecttest;

namespace {

TapePtr tapeOf(const std::vector<int32_t>& kinds)
{
    TapePtr tape(new Tape());
    tape->setPageSize(KGraphicSize(40, 30));
    for (int32_t kind : kinds) {
        if (kind == PageTransitionType)
            tape->addElement(*makeWipe(0x0000FF));
        else
            tape->addElement(*makeStroke({ { 5, 5 } }, 3, 0xFF0000));
    }
    return tape;
}

constexpr int32_t W = PageTransitionType;
constexpr int32_t S = StrokeType;

uint32_t colourAt(KImage& image, int32_t x, int32_t y)
{
    return image.getDevice().getPixel(int16_t(x), int16_t(y)).getNative() & 0xFFFFFF;
}

} // namespace

TEST(BookPrinter, EachTransitionClosesThePictureBeforeIt)
{
    struct Case {
        std::vector<int32_t> kinds;
        std::vector<int32_t> positions;
    };
    const Case cases[] = {
        // No transition: the whole tape is one picture.
        { { S, S }, { 2 } },
        // A first transition has nothing before it.
        { { W, S, S }, { 3 } },
        // The page before each later transition, then the last page.
        { { W, S, W, S, W, S }, { 2, 4, 6 } },
        // A transition at the end adds no blank picture.
        { { S, W, S, W }, { 1, 3 } },
        // Two transitions in a row: the colour page between them prints.
        { { S, W, W, S }, { 1, 2, 4 } },
        // Nothing but a transition, or nothing at all, is still a picture.
        { { W }, { 1 } },
        { {}, { 0 } },
    };
    for (const Case& c : cases) {
        TapePtr tape = tapeOf(c.kinds);
        EXPECT_EQ(BookPrinter::picturePositions(*tape), c.positions) << c.kinds.size() << " elements";
    }
}

TEST(BookPrinter, MarginsAndCellsFollowTheSheet)
{
    // Hundredths of a millimetre over 2500: a little more than asked.
    KGraphicRectangle printable = KPrintingManager::printableRectangleOf(5100, 6600, 600, 600, KNativePrintMargins());
    EXPECT_EQ(printable, KGraphicRectangle(240, 240, 5100 - 480, 6600 - 480));
    KNativePrintMargins wide { 10000, 2000, 15000, 0 };
    EXPECT_EQ(KPrintingManager::printableRectangleOf(3000, 3000, 300, 300, wide),
              KGraphicRectangle(1200, 240, 0, 2760));
    EXPECT_FALSE(KPrintingManager::isUsable(KGraphicRectangle(0, 0, 299, 900), 300, 300));
    EXPECT_TRUE(KPrintingManager::isUsable(KGraphicRectangle(0, 0, 300, 300), 300, 300));

    // A portrait sheet of 1200 x 1640 with a footer of 40: 1200 x 1600.
    KGraphicRectangle sheet(100, 100, 1200, 1640);
    using BookLayout::cell;
    EXPECT_EQ(cell(sheet, 40, 1, 5), KGraphicRectangle(100, 100, 1200, 1600));
    // Two: one above the other, gaps of a twentieth.
    EXPECT_EQ(cell(sheet, 40, 2, 1), KGraphicRectangle(160, 180, 1080, 640));
    EXPECT_EQ(cell(sheet, 40, 2, 2), KGraphicRectangle(160, 980, 1080, 640));
    // On a landscape sheet side by side.
    KGraphicRectangle landscape(0, 0, 1640, 1240);
    EXPECT_EQ(cell(landscape, 40, 2, 4), KGraphicRectangle(820 + 82, 60, 820 - 164, 1200 - 120));
    // Four: in row order, the fourth at the lower right, then again.
    EXPECT_EQ(cell(sheet, 40, 4, 1), KGraphicRectangle(130, 140, 540, 720));
    EXPECT_EQ(cell(sheet, 40, 4, 4), KGraphicRectangle(730, 940, 540, 720));
    EXPECT_EQ(cell(sheet, 40, 4, 5), cell(sheet, 40, 4, 1));
    // Nine: the ninth at the bottom right.
    EXPECT_EQ(cell(sheet, 40, 9, 9), KGraphicRectangle(100 + 800 + 20, 100 + 1066 + 26, 400 - 40, 533 - 52));
    // Anything else is taken as four.
    EXPECT_EQ(cell(sheet, 40, 3, 2), cell(sheet, 40, 4, 2));

    EXPECT_EQ(BookLayout::sheetCount(7, 4), 2);
    EXPECT_EQ(BookLayout::sheetCount(8, 4), 2);
    EXPECT_EQ(BookLayout::sheetCount(9, 9), 1);
    EXPECT_EQ(BookLayout::sheetCount(0, 4), 0);

    // Pictures keep their proportions and sit in the middle.
    EXPECT_EQ(BookLayout::fitInto(KGraphicSize(640, 480), KGraphicRectangle(0, 0, 400, 400)),
              KGraphicRectangle(0, 50, 400, 300));
    EXPECT_EQ(BookLayout::onePage(KGraphicRectangle(10, 10, 300, 440), 40, KGraphicSize(300, 200)),
              KGraphicRectangle(10, 110, 300, 200));
}

TEST(BookPrinter, SevenPicturesAtFourASheetLeaveTheLastCellWhite)
{
    // Seven pages of their own colour; the source paints each page plain.
    std::vector<int32_t> positions;
    std::map<int32_t, uint32_t> colours;
    const uint32_t palette[] = { 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF, 0x804020 };
    for (int32_t i = 0; i < 7; ++i) {
        positions.push_back(10 * (i + 1));
        colours[10 * (i + 1)] = palette[i];
    }
    auto source = [&](int32_t position, KImage& picture) {
        picture.setSize(KGraphicSize(40, 30));
        picture.getDevice().fillRectangle(KGraphicRectangle(0, 0, 40, 30), rgb(colours.at(position)));
        return true;
    };
    BookPrinter::Options options;
    options.perSheet = 4;
    BookPrinter book(options, positions, source, KString());
    ASSERT_EQ(book.getSheetCount(), 2);

    KImagePtr paper(new KImage(KGraphicSize(200, 300)));
    paper->getDevice().fillRectangle(KGraphicRectangle(0, 0, 200, 300), rgb(0xFFFFFF));
    KGraphicRectangle printable(10, 10, 180, 280);
    book.printSheet(paper->getDevice(), printable, 2);
    for (int32_t picture = 5; picture <= 8; ++picture) {
        KGraphicRectangle where = BookLayout::fitInto(KGraphicSize(40, 30), BookLayout::cell(printable, 0, 4, picture));
        uint32_t expected = picture <= 7 ? palette[picture - 1] : 0xFFFFFF;
        EXPECT_EQ(colourAt(*paper, where.x + where.width / 2, where.y + where.height / 2), expected) << picture;
    }
}

TEST(BookPrinter, TheOptionsLeaveTransitionBackgroundsWhite)
{
    KImagePtr page(new KImage(KGraphicSize(20, 10)));
    KGraphicRectangle all(0, 0, 20, 10);
    WipeOutPtr wipe = makeWipe(0x0000FF);
    auto drawn = [&](const BookPrinter::Options& options) {
        page->getDevice().fillRectangle(all, rgb(0x000000));
        BookBackgroundsScope scope(options);
        wipe->drawOn(page->getDevice(), all, all);
        return colourAt(*page, 10, 5);
    };
    BookPrinter::Options keep;
    keep.withoutColourBackgrounds = false;
    EXPECT_EQ(drawn(keep), 0x0000FFu);
    BookPrinter::Options white;
    white.withoutColourBackgrounds = true;
    EXPECT_EQ(drawn(white), 0xFFFFFFu);
    // The option for images leaves colours alone.
    BookPrinter::Options images;
    images.withoutColourBackgrounds = false;
    images.withoutImageBackgrounds = true;
    EXPECT_EQ(drawn(images), 0x0000FFu);
    // Outside a book the page shows its colour.
    wipe->drawOn(page->getDevice(), all, all);
    EXPECT_EQ(colourAt(*page, 10, 5), 0x0000FFu);
}
