#include "graphics/KColor.h"
#include "graphics/KFont.h"
#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicStateGuard.h"
#include "graphics/KPattern.h"
#include "graphics/KShapeRasteriser.h"
#include "tests/graphics/GraphicsTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

using namespace gfx;

using DeviceTest = GraphicsTest;

namespace {

std::vector<std::string> ovalShape(int16_t size)
{
    KImagePtr image = makeImage(size, size);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::White));
    d.fillOval(KGraphicRectangle(0, 0, size, size));
    return shape(*image);
}

// The dab line of a stroke: ovals of the brush along the line, one eighth of
// the brush apart.
void dabLine(KGraphicDevice& d, int16_t x0, int16_t y0, int16_t x1, int16_t y1, int16_t size)
{
    int16_t half = size / 2;
    int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
    int step = std::max(size / 8, 1);
    for (int i = 0; i <= steps; i += step) {
        int16_t x = int16_t(x0 + (x1 - x0) * i / std::max(steps, 1));
        int16_t y = int16_t(y0 + (y1 - y0) * i / std::max(steps, 1));
        d.fillOval(KGraphicRectangle(int16_t(x - half), int16_t(y - half), size, size));
    }
}

} // namespace

TEST_F(DeviceTest, NewDevicesAreBlackAndDevicesWithoutNativeSideDoNothing)
{
    KImagePtr image = makeImage(4, 3);
    EXPECT_EQ(countPixels(*image, kBlack), 12);
    EXPECT_EQ(image->getDevice().getBounds(), KGraphicRectangle(0, 0, 4, 3));
    EXPECT_EQ(image->getDevice().getOwner(), KImage::kDeviceOwner);
    EXPECT_EQ(image->getDevice().getDepth(), 24);

    ErrorRecorder errors;
    KGraphicDevice bare;
    bare.fillRectangle(KGraphicRectangle(0, 0, 10, 10));
    bare.fillOval(KGraphicRectangle(0, 0, 10, 10));
    bare.drawString("text", KGraphicPoint(0, 0));
    bare.copyTo(image->getDevice(), KGraphicPoint(0, 0));
    image->getDevice().copyTo(bare, KGraphicPoint(0, 0));
    EXPECT_EQ(bare.getPixel(0, 0), KColor(KColor::Black));
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(countPixels(*image, kBlack), 12);
}

TEST_F(DeviceTest, PenModesPaintForegroundBackgroundOrInvertExactly)
{
    KImagePtr image = makeImage(16, 16);
    fillNoise(*image, 7);
    std::vector<uint32_t> page = pixels(*image);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(colour(0x123456));
    d.setBackground(colour(0xABCDEF));
    KGraphicRectangle r(2, 3, 5, 4);

    d.fillRectangle(r);
    EXPECT_EQ(pixel(*image, 2, 3), 0x123456u);
    EXPECT_EQ(pixel(*image, 6, 6), 0x123456u);
    EXPECT_EQ(pixel(*image, 7, 6), page[6 * 16 + 7]) << "the right edge is outside";

    d.setPenMode(KGraphicDeviceState::CopyBackground);
    d.fillRectangle(r);
    EXPECT_EQ(pixel(*image, 4, 4), 0xABCDEFu);

    // Inverting twice gives back the page, whatever overlaps within a shape.
    fillNoise(*image, 7);
    d.setPenMode(KGraphicDeviceState::Invert);
    auto everything = [&] {
        d.fillRectangle(KGraphicRectangle(1, 1, 9, 9));
        d.fillOval(KGraphicRectangle(3, 2, 11, 7));
        d.frameOval(KGraphicRectangle(0, 0, 16, 16));
        d.fillRoundRectangle(KGraphicRectangle(4, 4, 10, 10), 6);
        d.setPenSize(3);
        d.line(0, 15, 15, 0);
        d.fillPolygon({ KGraphicPoint(0, 0), KGraphicPoint(15, 15), KGraphicPoint(15, 0), KGraphicPoint(0, 15) });
        d.setPenSize(1);
        d.drawDashedPath({ KGraphicPoint(1, 1), KGraphicPoint(14, 1), KGraphicPoint(14, 14) });
        d.invertFrame(KGraphicRectangle(5, 5, 6, 6));
    };
    everything();
    EXPECT_NE(pixels(*image), page);
    everything();
    EXPECT_EQ(pixels(*image), page);

    // The single pixel of a 1 by 1 inverted rectangle flips exactly.
    d.fillRectangle(KGraphicRectangle(9, 9, 1, 1));
    EXPECT_EQ(pixel(*image, 9, 9), page[9 * 16 + 9] ^ 0xFFFFFFu);
    // eraseRectangle paints the background even in the inverting mode.
    d.eraseRectangle(KGraphicRectangle(0, 0, 1, 1));
    EXPECT_EQ(pixel(*image, 0, 0), 0xABCDEFu);
    EXPECT_EQ(d.getPenMode(), KGraphicDeviceState::Invert);
}

TEST_F(DeviceTest, InsideFramePensStayWithinTheShape)
{
    KImagePtr image = makeImage(12, 10);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::White));
    d.setPenSize(2);
    d.frameRectangle(KGraphicRectangle(1, 1, 10, 8));
    std::vector<std::string> expected = {
        "............", ".##########.", ".##########.", ".##......##.", ".##......##.",
        ".##......##.", ".##......##.", ".##########.", ".##########.", "............",
    };
    EXPECT_EQ(shape(*image), expected);

    // A pen as wide as half the shape fills it.
    fill(*image, kBlack);
    d.setPenSize(5);
    d.frameRectangle(KGraphicRectangle(0, 0, 10, 10));
    EXPECT_EQ(countPixels(*image, kWhite), 100);

    // The oval frame lies inside the filled oval, and is the filled oval
    // less the oval shrunk by the pen.
    KImagePtr filled = makeImage(20, 14);
    KImagePtr framed = makeImage(20, 14);
    KImagePtr inner = makeImage(20, 14);
    filled->getDevice().setForeground(KColor(KColor::White));
    filled->getDevice().fillOval(KGraphicRectangle(0, 0, 20, 14));
    framed->getDevice().setForeground(KColor(KColor::White));
    framed->getDevice().setPenSize(3);
    framed->getDevice().frameOval(KGraphicRectangle(0, 0, 20, 14));
    inner->getDevice().setForeground(KColor(KColor::White));
    inner->getDevice().fillOval(KGraphicRectangle(3, 3, 14, 8));
    for (int y = 0; y < 14; ++y) {
        for (int x = 0; x < 20; ++x) {
            bool expectFrame = pixel(*filled, x, y) && !pixel(*inner, x, y);
            EXPECT_EQ(pixel(*framed, x, y) != 0, expectFrame) << x << "," << y;
        }
    }
}

TEST_F(DeviceTest, SmallOvalsAreRound)
{
    EXPECT_EQ(ovalShape(1), (std::vector<std::string> { "#" }));
    EXPECT_EQ(ovalShape(2), (std::vector<std::string> { "##", "##" }));
    EXPECT_EQ(ovalShape(3), (std::vector<std::string> { ".#.", "###", ".#." }));
    EXPECT_EQ(ovalShape(4), (std::vector<std::string> { ".##.", "####", "####", ".##." }));
    EXPECT_EQ(ovalShape(5), (std::vector<std::string> { ".###.", "#####", "#####", "#####", ".###." }));
    EXPECT_EQ(ovalShape(6), (std::vector<std::string> { "..##..", ".####.", "######", "######", ".####.", "..##.." }));

    // A 1 by 1 dab is one pixel of the foreground.
    KImagePtr image = makeImage(3, 3);
    image->getDevice().setForeground(colour(0x445566));
    image->getDevice().fillOval(KGraphicRectangle(1, 1, 1, 1));
    EXPECT_EQ(pixel(*image, 1, 1), 0x445566u);
    EXPECT_EQ(countPixels(*image, kBlack), 8);

    // Large ovals are symmetric and touch all four sides of their box.
    KImagePtr big = makeImage(41, 27);
    big->getDevice().setForeground(KColor(KColor::White));
    big->getDevice().fillOval(KGraphicRectangle(0, 0, 41, 27));
    std::vector<std::string> rows = shape(*big);
    for (size_t y = 0; y < rows.size(); ++y) {
        EXPECT_EQ(rows[y], std::string(rows[y].rbegin(), rows[y].rend()));
        EXPECT_EQ(rows[y], rows[rows.size() - 1 - y]);
    }
    EXPECT_EQ(rows[13], std::string(41, '#'));
    EXPECT_EQ(rows[0][20], '#');
    EXPECT_EQ(rows[0][0], '.');
}

TEST_F(DeviceTest, RedrawingAStrokeInBlackErasesItExactly)
{
    KImagePtr page = makeImage(120, 80);
    KGraphicDevice& d = page->getDevice();
    for (int16_t size : { 1, 3, 7, 16 }) {
        d.setForeground(colour(0x20A040));
        dabLine(d, 10, 10, 100, 60, size);
        dabLine(d, 100, 60, 30, 70, size);
        EXPECT_GT(countPixels(*page, 0x20A040), 0);
        d.setForeground(KColor(KColor::Black));
        dabLine(d, 10, 10, 100, 60, size);
        dabLine(d, 100, 60, 30, 70, size);
        EXPECT_EQ(countPixels(*page, kBlack), 120 * 80) << "brush " << size;
    }
}

TEST_F(DeviceTest, LinesPolygonsAndRegions)
{
    KImagePtr image = makeImage(8, 6);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::White));
    d.line(1, 1, 6, 1);
    EXPECT_EQ(shape(*image)[1], ".#####..") << "the end point is left out";
    EXPECT_EQ(d.getPenPosition(), KGraphicPoint(6, 1));
    d.lineTo(6, 4);
    EXPECT_EQ(pixel(*image, 6, 1), kWhite);
    EXPECT_EQ(pixel(*image, 6, 3), kWhite);
    EXPECT_EQ(pixel(*image, 6, 4), kBlack);

    // A closed polygon frame reaches every vertex; the fill covers the
    // inside by the even-odd rule and the outline.
    fill(*image, kBlack);
    d.framePolygon({ KGraphicPoint(1, 1), KGraphicPoint(6, 1), KGraphicPoint(6, 4), KGraphicPoint(1, 4) });
    EXPECT_EQ(shape(*image),
              (std::vector<std::string> { "........", ".######.", ".#....#.", ".#....#.", ".######.", "........" }));
    fill(*image, kBlack);
    d.fillPolygon({ KGraphicPoint(1, 1), KGraphicPoint(6, 1), KGraphicPoint(6, 4), KGraphicPoint(1, 4) });
    EXPECT_EQ(countPixels(*image, kWhite), 24);

    // Regions: filled as they are; framed inside by the pen.
    KGraphicRegion region(KWideRectangle(0, 0, 4, 4));
    region.uniteWith(KWideRectangle(4, 2, 4, 4));
    fill(*image, kBlack);
    d.fillRegion(region);
    EXPECT_EQ(countPixels(*image, kWhite), 32);
    fill(*image, kBlack);
    d.frameRegion(region);
    EXPECT_EQ(shape(*image),
              (std::vector<std::string> { "####....", "#..#....", "#..#####", "#####..#", "....#..#", "....####" }));

    // The popup arrow is an 8 by 4 triangle pointing down.
    fill(*image, kBlack);
    d.drawPopupArrow(KGraphicRectangle(0, 0, 8, 6));
    EXPECT_EQ(shape(*image),
              (std::vector<std::string> { "........", "########", ".######.", "..####..", "...##...", "........" }));
}

TEST_F(DeviceTest, DashesFocusRectanglesAndEdges)
{
    KImagePtr image = makeImage(40, 6);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::White));
    d.drawDashedPath({ KGraphicPoint(0, 0), KGraphicPoint(39, 0), KGraphicPoint(39, 5), KGraphicPoint(0, 5) });
    EXPECT_EQ(shape(*image)[0], "#########......###......#########......#") << "9 on, 6 off, 3 on, 6 off";

    // A focus rectangle is dotted and goes away when drawn again.
    fillNoise(*image, 3);
    std::vector<uint32_t> page = pixels(*image);
    d.drawFocusRectangle(KGraphicRectangle(2, 1, 10, 4));
    EXPECT_EQ(pixel(*image, 3, 1), page[1 * 40 + 3] ^ 0xFFFFFFu);
    EXPECT_EQ(pixel(*image, 2, 1), page[1 * 40 + 2]);
    EXPECT_EQ(pixel(*image, 5, 2), page[2 * 40 + 5]) << "the inside stays";
    d.drawFocusRectangle(KGraphicRectangle(2, 1, 10, 4));
    EXPECT_EQ(pixels(*image), page);

    // Edges: two borders, light at the top left of a raised edge, dark at
    // its bottom right, and the reverse when sunken.
    fill(*image, kBlack);
    d.drawEdgeRaised(KGraphicRectangle(0, 0, 10, 6));
    uint32_t face = KColor(KColor::ButtonFace).getNative();
    EXPECT_EQ(pixel(*image, 0, 0), face);
    EXPECT_EQ(pixel(*image, 1, 1), kWhite);
    EXPECT_EQ(pixel(*image, 9, 5), 0x696969u);
    EXPECT_EQ(pixel(*image, 8, 4), 0xA0A0A0u);
    EXPECT_EQ(pixel(*image, 9, 0), 0x696969u) << "the far corners belong to the dark side";
    EXPECT_EQ(pixel(*image, 4, 3), kBlack);
    d.drawEdgeSunken(KGraphicRectangle(0, 0, 10, 6));
    EXPECT_EQ(pixel(*image, 0, 0), 0xA0A0A0u);
    EXPECT_EQ(pixel(*image, 1, 1), 0x696969u);
    EXPECT_EQ(pixel(*image, 9, 5), kWhite);
    d.drawEdgeEtched(KGraphicRectangle(0, 0, 10, 6));
    EXPECT_EQ(pixel(*image, 0, 0), 0xA0A0A0u);
    EXPECT_EQ(pixel(*image, 1, 1), kWhite);
}

TEST_F(DeviceTest, RoundRectangles)
{
    KImagePtr image = makeImage(10, 8);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::White));
    d.fillRoundRectangle(KGraphicRectangle(0, 0, 10, 8), 4);
    std::vector<std::string> expected = { ".########.", "##########", "##########", "##########",
                                          "##########", "##########", "##########", ".########." };
    EXPECT_EQ(shape(*image), expected);
    fill(*image, kBlack);
    d.fillRoundRectangle(KGraphicRectangle(0, 0, 10, 8), 1);
    EXPECT_EQ(countPixels(*image, kWhite), 80) << "a radius of 1 is square";
    fill(*image, kBlack);
    d.frameRoundRectangle(KGraphicRectangle(0, 0, 10, 8), 4);
    EXPECT_EQ(shape(*image)[0], ".########.");
    EXPECT_EQ(shape(*image)[3], "#........#");
}

TEST_F(DeviceTest, StateAndClipStacks)
{
    KImagePtr image = makeImage(10, 10);
    KGraphicDevice& d = image->getDevice();
    d.setForeground(KColor(KColor::Red));
    KFontPtr font(new KFont(KString("Arial"), 20.0));
    d.setFont(*font);
    {
        KGraphicStateGuard state(d);
        d.setForeground(KColor(KColor::Green));
        d.setPenMode(KGraphicDeviceState::Invert);
        d.setPenSize(4);
        d.clearFont();
        EXPECT_EQ(d.getStateDepth(), 1);
    }
    EXPECT_EQ(d.getStateDepth(), 0);
    EXPECT_EQ(d.getForeground(), KColor(KColor::Red));
    EXPECT_EQ(d.getPenMode(), KGraphicDeviceState::CopyForeground);
    EXPECT_EQ(d.getPenSize(), 1);
    EXPECT_EQ(d.getFont(), nullptr) << "the font is not part of the saved state";
    d.restoreState(); // empty: nothing
    EXPECT_EQ(d.getForeground(), KColor(KColor::Red));

    // A colour that looks the same changes nothing.
    d.setForeground(KColor(0xFF12, 0, 0));
    EXPECT_EQ(d.getForeground(), KColor(KColor::Red));

    {
        KGraphicClipGuard clip(d);
        d.setClip(KGraphicRectangle(2, 2, 3, 3));
        d.uniteClip(KGraphicRectangle(7, 7, 2, 2));
        d.fillRectangle(KGraphicRectangle(0, 0, 10, 10));
        EXPECT_EQ(countPixels(*image, kRed), 13);
        d.intersectClip(KGraphicRectangle(0, 0, 3, 3));
        EXPECT_TRUE(d.getClip().isRectangle(KWideRectangle(2, 2, 1, 1)));
    }
    EXPECT_TRUE(d.getClip().isRectangle(KWideRectangle(0, 0, 10, 10)));
    d.restoreClip(); // empty: nothing
    d.fillRectangle(KGraphicRectangle(-5, -5, 30, 30));
    EXPECT_EQ(countPixels(*image, kRed), 100) << "drawing past the surface is cut off";
}

TEST_F(DeviceTest, PatternFillsAlignToTheDeviceOrigin)
{
    KPatternPtr tile(new KPattern(KGraphicSize(4, 3)));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            setPixel(*tile, x, y, uint32_t(0x100000 * (x + 1) + 0x10 * (y + 1)));

    KImagePtr twoFills = makeImage(23, 11);
    twoFills->getDevice().fillWithPattern(KGraphicRectangle(1, 2, 9, 7), *tile);
    twoFills->getDevice().fillWithPattern(KGraphicRectangle(10, 2, 11, 7), *tile);
    KImagePtr oneFill = makeImage(23, 11);
    oneFill->getDevice().fillWithPattern(KGraphicRectangle(1, 2, 20, 7), *tile);
    EXPECT_EQ(pixels(*twoFills), pixels(*oneFill)) << "neighbouring fills join without a seam";
    for (int y = 0; y < 11; ++y) {
        for (int x = 0; x < 23; ++x) {
            bool inside = x >= 1 && x < 21 && y >= 2 && y < 9;
            uint32_t expected = inside ? pixel(*tile, x % 4, y % 3) : kBlack;
            EXPECT_EQ(pixel(*oneFill, x, y), expected) << x << "," << y;
        }
    }
    EXPECT_TRUE(oneFill->getDevice().getClip().isRectangle(KWideRectangle(0, 0, 23, 11)));

    // An empty tile tiles nothing.
    KPatternPtr empty(new KPattern());
    oneFill->getDevice().fillWithPattern(KGraphicRectangle(0, 0, 23, 11), *empty);
    EXPECT_EQ(pixel(*oneFill, 0, 0), kBlack);
}

TEST_F(DeviceTest, CopiesExactStretchedAndOverlapping)
{
    KImagePtr source = makeImage(8, 8);
    fillNoise(*source, 11);
    KImagePtr target = makeImage(10, 10);
    source->getDevice().copyTo(target->getDevice(), KGraphicRectangle(2, 2, 4, 4), KGraphicRectangle(5, 6, 4, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(pixel(*target, 5 + x, 6 + y), pixel(*source, 2 + x, 2 + y));
    EXPECT_EQ(pixel(*target, 4, 6), kBlack);

    // Clipped by the target; the part of the source beyond its edge is not
    // drawn.
    fill(*target, kBlack);
    target->getDevice().setClip(KGraphicRectangle(0, 0, 3, 10));
    source->getDevice().copyTo(target->getDevice(), KGraphicPoint(0, 0));
    target->getDevice().setClip(KGraphicRectangle(0, 0, 10, 10));
    EXPECT_EQ(pixel(*target, 2, 7), pixel(*source, 2, 7));
    EXPECT_EQ(pixel(*target, 3, 0), kBlack);
    fill(*target, kRed);
    source->getDevice().copyTo(target->getDevice(), KGraphicRectangle(6, 6, 4, 4), KGraphicRectangle(0, 0, 4, 4));
    EXPECT_EQ(pixel(*target, 1, 1), pixel(*source, 7, 7));
    EXPECT_EQ(pixel(*target, 2, 2), kRed);

    // Copies within one device that overlap come out as if read first.
    for (auto [dx, dy] : { std::pair { 2, 1 }, std::pair { -1, -2 }, std::pair { 3, 0 }, std::pair { 0, -3 } }) {
        fillNoise(*source, 5);
        std::vector<uint32_t> before = pixels(*source);
        source->getDevice().copyTo(source->getDevice(), KGraphicRectangle(2, 2, 5, 5),
                                   KGraphicRectangle(int16_t(2 + dx), int16_t(2 + dy), 5, 5));
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                int tx = 2 + dx + x, ty = 2 + dy + y;
                if (tx >= 0 && ty >= 0 && tx < 8 && ty < 8) {
                    EXPECT_EQ(pixel(*source, tx, ty), before[size_t((2 + y) * 8 + 2 + x)]);
                }
            }
    }
    // Stretched within one device too.
    fill(*source, kBlack);
    source->getDevice().fillRectangle(KGraphicRectangle(0, 0, 2, 2), KColor(KColor::Blue));
    source->getDevice().copyTo(source->getDevice(), KGraphicRectangle(0, 0, 2, 2), KGraphicRectangle(0, 0, 8, 8));
    EXPECT_EQ(countPixels(*source, kBlue), 64);
}

TEST_F(DeviceTest, HalfToneCopyAveragesWhenShrinking)
{
    KImagePtr checker = makeImage(16, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            setPixel(*checker, x, y, (x + y) % 2 ? kWhite : kBlack);
    KImagePtr half = makeImage(8, 8);
    checker->getDevice().copyTo(half->getDevice(), KGraphicRectangle(0, 0, 8, 8));
    for (uint32_t p : pixels(*half)) {
        for (int shift : { 0, 8, 16 }) {
            uint32_t c = (p >> shift) & 0xFF;
            EXPECT_GE(c, 0x70u);
            EXPECT_LE(c, 0x90u);
        }
    }
    // Enlarging a single colour stays that colour.
    KImagePtr red = makeImage(2, 2);
    fill(*red, kRed);
    KImagePtr large = makeImage(9, 7);
    red->getDevice().copyTo(large->getDevice(), KGraphicRectangle(0, 0, 9, 7));
    EXPECT_EQ(countPixels(*large, kRed), 63);
}

TEST_F(DeviceTest, TextIsDrawnInTheForeground)
{
    KImagePtr image = makeImage(120, 40);
    KGraphicDevice& d = image->getDevice();
    KFontPtr font(new KFont(KString("Arial"), 20.0, KFont::Bold));
    d.setFont(*font);
    d.setForeground(KColor(KColor::White));
    d.drawString(KString("Hello \xE9t\xE9"), KGraphicPoint(4, 2));
    KWideSize size = font->measureString(KString("Hello \xE9t\xE9"));
    EXPECT_GT(size.width, 40);
    EXPECT_GT(size.height, 15);
    int64_t lit = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 120; ++x)
            if (pixel(*image, x, y)) {
                ++lit;
                EXPECT_LT(x, 4 + size.width + 2);
                EXPECT_LT(y, 2 + size.height);
            }
    EXPECT_GT(lit, 100);
    EXPECT_GT(countPixels(*image, kWhite), 10) << "glyph cores are fully covered";

    // The clip holds for text as well.
    fill(*image, kBlack);
    d.setClip(KGraphicRectangle(0, 0, 20, 40));
    d.drawString(KString("Hello"), KGraphicPoint(4, 2));
    for (int y = 0; y < 40; ++y)
        for (int x = 20; x < 120; ++x)
            EXPECT_EQ(pixel(*image, x, y), kBlack);

    EXPECT_GT(font->getAscent(), 10);
    EXPECT_GE(font->getLineHeight(), font->getAscent() + font->getDescent() - 1);
}

TEST_F(DeviceTest, StandardFonts)
{
    KString name;
    double size = 0;
    kksGetStandardFont(0, name, &size);
    EXPECT_EQ(name, "System");
    EXPECT_EQ(size, 11.0);
    kksGetStandardFont(2, name, &size);
    EXPECT_EQ(name, "Arial");
    EXPECT_EQ(size, 11.0);
    kksGetStandardFont(7, name, &size);
    EXPECT_EQ(name, "helvetica");
    EXPECT_EQ(size, 12.0);
    EXPECT_EQ(KFont(KString("Times New Roman")).getSize(), 12.0);
    EXPECT_EQ(KFont(KString("Arial"), 0.0).getSize(), 12.0);

    ErrorRecorder errors;
    kksGetStandardFont(1, name, nullptr);
    EXPECT_EQ(errors.lastCode(), KError::PointerNull);
}
