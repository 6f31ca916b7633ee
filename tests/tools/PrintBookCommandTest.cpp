// taleloom-tool print-book: a story of seven pages printed four to a sheet
// into a PDF, read back with pdftoppm and compared, picture by picture, with
// the page the render command draws.

#include "tests/kernel/FileTestSupport.h"
#include "tests/project/ProjectTestSupport.h"

#include "app/AppClasses.h"
#include "graphics/KImage.h"
#include "graphics/KPdfDocument.h"
#include "kernel/KTextCodec.h"
#include "project/BookLayout.h"
#include "project/BookPrinter.h"
#include "project/StylusProject.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "windowing/KPrintingManager.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace filetest;
using namespace projecttest;

namespace {

constexpr int32_t kPageWidth = 160;
constexpr int32_t kPageHeight = 120;
// pdftoppm's resolution: a fifth of the printer's.
constexpr int32_t kSheetDpi = 60;
const uint32_t kPageColours[] = { 0xC03020, 0x20A040, 0x2040C0, 0xE0C020, 0x9030A0, 0x30B0B0, 0x806040 };

struct Rgb {
    int r, g, b;
};

Rgb rgbOf(KImage& image, int32_t x, int32_t y)
{
    uint32_t value = image.getDevice().getPixel(int16_t(x), int16_t(y)).getNative();
    return { int(value >> 16 & 0xFF), int(value >> 8 & 0xFF), int(value & 0xFF) };
}

bool near(const Rgb& a, const Rgb& b, int tolerance)
{
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

KImagePtr loadPng(const std::string& path)
{
    KImagePtr image(new KImage());
    if (!image->createFromPath(KTextCodec::fromUtf8(path)))
        return nullptr;
    return image;
}

class PrintBookCommand : public ::testing::Test {
protected:
    void SetUp() override
    {
        registerDocumentClasses();
        std::filesystem::create_directory(folder.file("story"));
        StylusProjectPtr story(new StylusProject());
        Tape& tape = *story->getTape();
        tape.setPageSize(KGraphicSize(kPageWidth, kPageHeight));
        // Seven pages, each its own colour with a white mark in a corner.
        for (uint32_t colour : kPageColours) {
            tape.addElement(*makeWipe(colour));
            tape.addElement(*makeStroke({ { 20, 20 }, { 50, 30 } }, 9, 0xFFFFFF));
        }
        ASSERT_TRUE(story->save(KFileReference(folder.pathOf("story/story.TPD"))));
        positions = BookPrinter::picturePositions(tape);
        ASSERT_EQ(positions.size(), 7u);
    }

    int run(const std::vector<std::string>& arguments, std::string& out)
    {
        std::ostringstream outStream, errStream;
        int status = runTaleloomTool(arguments, outStream, errStream);
        out = outStream.str();
        EXPECT_EQ(errStream.str(), "");
        return status;
    }

    // The sheets of the PDF as pictures.
    std::vector<KImagePtr> sheetsOf(const std::string& pdf)
    {
        std::string prefix = folder.file("sheet");
        std::string command = "pdftoppm -r " + std::to_string(kSheetDpi) + " -png '" + pdf + "' '" + prefix + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        std::vector<KImagePtr> sheets;
        for (int page = 1;; ++page) {
            std::string path = prefix + "-" + std::to_string(page) + ".png";
            KImagePtr sheet = std::filesystem::exists(path) ? loadPng(path) : nullptr;
            if (!sheet)
                break;
            sheets.push_back(sheet);
        }
        return sheets;
    }

    // Where picture `picture` lands on a sheet, in the sheet's pixels.
    KGraphicRectangle placeOf(int32_t picture)
    {
        KPdfDocument measure(folder.file("measure.pdf"), 595.276, 841.89, KPrintingManager::kDotsPerInch);
        KGraphicDevice* device = measure.beginPage();
        int32_t footer = device ? BookPrinter::footerHeight(*device) : 0;
        KGraphicRectangle printable = KPrintingManager::printableRectangleOf(
            measure.getWidthDots(), measure.getHeightDots(), KPrintingManager::kDotsPerInch,
            KPrintingManager::kDotsPerInch, KNativePrintMargins());
        KGraphicRectangle dots = BookLayout::fitInto(KGraphicSize(kPageWidth, kPageHeight),
                                                     BookLayout::cell(printable, footer, 4, picture));
        double scale = kSheetDpi / KPrintingManager::kDotsPerInch;
        return KGraphicRectangle(int16_t(dots.x * scale), int16_t(dots.y * scale), int16_t(dots.width * scale),
                                 int16_t(dots.height * scale));
    }

    // Compares a grid of points of the printed picture with the rendered
    // page, where the page is plain around the point (edges blur in print).
    void expectPictureMatches(KImage& sheet, const KGraphicRectangle& place, KImage& page, int32_t picture)
    {
        int compared = 0;
        for (int32_t gy = 1; gy < 12; ++gy) {
            for (int32_t gx = 1; gx < 16; ++gx) {
                int32_t u = gx * kPageWidth / 16, v = gy * kPageHeight / 12;
                Rgb expected = rgbOf(page, u, v);
                bool plain = true;
                for (int32_t dy = -6; dy <= 6 && plain; dy += 3)
                    for (int32_t dx = -6; dx <= 6 && plain; dx += 3)
                        plain = near(rgbOf(page, u + dx, v + dy), expected, 0);
                if (!plain)
                    continue;
                int32_t x = place.x + (u * place.width + kPageWidth / 2) / kPageWidth;
                int32_t y = place.y + (v * place.height + kPageHeight / 2) / kPageHeight;
                Rgb printed = rgbOf(sheet, x, y);
                EXPECT_TRUE(near(printed, expected, 12))
                    << "picture " << picture << " at " << u << "," << v << ": " << printed.r << "," << printed.g << ","
                    << printed.b << " for " << expected.r << "," << expected.g << "," << expected.b;
                ++compared;
            }
        }
        EXPECT_GT(compared, 100) << picture;
    }

    TempFolder folder;
    std::vector<int32_t> positions;
};

} // namespace

TEST_F(PrintBookCommand, SevenPagesFourASheetMatchTheRenderedPages)
{
    std::string pdf = folder.file("book.pdf"), out;
    ASSERT_EQ(
        run({ "print-book", folder.file("story/story.TPD"), "--per-sheet", "4", "--paper", "a4", "-o", pdf }, out), 0);
    EXPECT_NE(out.find("\"pictures\": 7"), std::string::npos) << out;
    EXPECT_NE(out.find("\"sheets\": 2"), std::string::npos) << out;
    std::vector<KImagePtr> sheets = sheetsOf(pdf);
    ASSERT_EQ(sheets.size(), 2u);
    // A4 at the sheets' resolution.
    EXPECT_NEAR(sheets[0]->getSize().width, 496, 1);
    EXPECT_NEAR(sheets[0]->getSize().height, 702, 1);

    for (int32_t picture = 1; picture <= 7; ++picture) {
        std::string png = folder.file("page" + std::to_string(picture) + ".png"), reason;
        std::vector<std::string> warnings;
        ASSERT_TRUE(
            renderProjectPage(folder.file("story/story.TPD"), positions[size_t(picture - 1)], png, reason, warnings))
            << reason;
        KImagePtr page = loadPng(png);
        ASSERT_TRUE(page);
        expectPictureMatches(*sheets[size_t((picture - 1) / 4)], placeOf(picture), *page, picture);
    }
    // The eighth cell stays white.
    KGraphicRectangle empty = placeOf(8);
    Rgb white { 255, 255, 255 };
    for (int32_t step = 1; step < 8; ++step) {
        EXPECT_TRUE(
            near(rgbOf(*sheets[1], empty.x + empty.width * step / 8, empty.y + empty.height * step / 8), white, 0));
    }
}

TEST_F(PrintBookCommand, ColourBackgroundsCanBeLeftWhite)
{
    std::string pdf = folder.file("plain.pdf"), out;
    ASSERT_EQ(
        run({ "print-book", folder.file("story/story.TPD"), "--per-sheet", "1", "--no-colour-backgrounds", "-o", pdf },
            out),
        0);
    std::vector<KImagePtr> sheets = sheetsOf(pdf);
    ASSERT_EQ(sheets.size(), 7u);
    KGraphicSize size = sheets[0]->getSize();
    // The middle of the page is the transition's colour no more.
    EXPECT_TRUE(near(rgbOf(*sheets[0], size.width / 2, size.height / 2), Rgb { 255, 255, 255 }, 0));
}

TEST_F(PrintBookCommand, BadRequestsAreRefused)
{
    std::string out;
    std::string story = folder.file("story/story.TPD");
    for (const auto& arguments : std::vector<std::vector<std::string>> {
             { "print-book", story, "-o", folder.file("a.pdf") },
             { "print-book", story, "--per-sheet", "3", "-o", folder.file("a.pdf") },
             { "print-book", story, "--per-sheet", "4", "--paper", "a5", "-o", folder.file("a.pdf") },
             { "print-book", story, "--per-sheet", "4" } }) {
        std::ostringstream outStream, errStream;
        EXPECT_EQ(runTaleloomTool(arguments, outStream, errStream), 2);
        EXPECT_EQ(errStream.str().rfind("usage: taleloom-tool print-book ", 0), 0u);
    }
    std::ostringstream outStream, errStream;
    EXPECT_EQ(runTaleloomTool({ "print-book", story, "--per-sheet", "4", "-o", folder.file("missing/book.pdf") },
                              outStream, errStream),
              1);
    EXPECT_FALSE(std::filesystem::exists(folder.file("missing")));
    EXPECT_EQ(runTaleloomTool({ "print-book", folder.file("none.TPD"), "--per-sheet", "4", "-o", folder.file("b.pdf") },
                              outStream, errStream),
              1);
    EXPECT_FALSE(std::filesystem::exists(folder.file("b.pdf")));
}
