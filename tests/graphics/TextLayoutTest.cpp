#include "graphics/KTextBlock.h"
#include "graphics/KTextBlockObject.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextLineObject.h"
#include "graphics/KTextStyle.h"
#include "tests/graphics/GraphicsTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

using TextLayout = GraphicsTest;

namespace {

constexpr uint32_t kMark = 0xFFFF00;

const char* kSentence = "The quick brown fox jumps over the lazy dog and runs far away into the woods";

bool inside(const std::vector<KWideRectangle>& boxes, int32_t x, int32_t y)
{
    for (const KWideRectangle& box : boxes) {
        if (box.contains(x, y))
            return true;
    }
    return false;
}

int64_t area(const std::vector<KWideRectangle>& boxes)
{
    int64_t sum = 0;
    for (const KWideRectangle& box : boxes)
        sum += int64_t(box.width) * box.height;
    return sum;
}

// Draws the object with the range marked into a white image and checks
// that the mark colour lies only inside the range's boxes and fills most of
// them (the rest is ink).
void expectMarkInsideBoxes(KTextBlockObject& object, int32_t start, int32_t length, int16_t width, int16_t height)
{
    KImagePtr image = gfx::makeImage(width, height);
    gfx::fill(*image, gfx::kWhite);
    object.setSelection(start, length);
    object.setSelectionColour(gfx::colour(kMark));
    object.drawIn(image->getDevice(), KGraphicRectangle(0, 0, width, height));
    std::vector<KWideRectangle> boxes = object.getCharacterBoxes(start, length);
    ASSERT_FALSE(boxes.empty());
    int64_t lit = 0;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            if (gfx::pixel(*image, x, y) != kMark)
                continue;
            ++lit;
            ASSERT_TRUE(inside(boxes, x, y)) << "mark at " << x << "," << y;
        }
    }
    EXPECT_GT(lit, area(boxes) / 2);
}

} // namespace

TEST_F(TextLayout, ABlockWrapsAlikeAtAQuarterOfItsScale)
{
    KTextBlock block { KString(kSentence) };
    KTextBlockObject full(block);
    full.setWidth(300);
    std::vector<int32_t> lines = full.getLineStarts();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines.front(), 0);

    KTextBlock small(block);
    small.scaleFontSizes(0.25);
    KTextBlockObject quarter(small);
    quarter.setWidth(75);
    EXPECT_EQ(quarter.getLineStarts(), lines);
    EXPECT_NEAR(quarter.getHeight() * 4, full.getHeight(), 4);

    // Drawing smaller scales the text and keeps the lines.
    KImagePtr thumbnail = gfx::makeImage(75, 60);
    gfx::fill(*thumbnail, gfx::kWhite);
    full.drawIn(thumbnail->getDevice(), KGraphicRectangle(0, 0, 75, 60));
    EXPECT_EQ(full.getLineStarts(), lines);
    EXPECT_EQ(full.getBounds().width, 300);
    int32_t lowestInk = -1;
    for (int32_t y = 0; y < 60; ++y) {
        for (int32_t x = 0; x < 75; ++x) {
            if (gfx::pixel(*thumbnail, x, y) != gfx::kWhite)
                lowestInk = y;
        }
    }
    EXPECT_NEAR(lowestInk, full.getHeight() / 4, 4);
}

TEST_F(TextLayout, TheMarkOfAWordLiesInItsBoxes)
{
    KTextBlockObject object { KTextBlock(KString(kSentence)) };
    object.setWidth(200);
    // "lazy", on a later line.
    expectMarkInsideBoxes(object, 35, 4, 200, 160);
    std::vector<KWideRectangle> boxes = object.getCharacterBoxes(35, 4);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_GT(boxes[0].y, 0);
    EXPECT_EQ(object.getCharPositionAt(KWidePoint(boxes[0].x + 2, boxes[0].y + boxes[0].height / 2)), 35);

    // Drawn smaller, the mark follows the text into the target.
    KImagePtr image = gfx::makeImage(100, 80);
    gfx::fill(*image, gfx::kWhite);
    KGraphicRectangle target(0, 0, 100, 80);
    object.drawIn(image->getDevice(), target);
    std::vector<KWideRectangle> scaled = object.getCharacterBoxes(35, 4, target);
    int64_t lit = 0;
    for (int32_t y = 0; y < 80; ++y) {
        for (int32_t x = 0; x < 100; ++x) {
            if (gfx::pixel(*image, x, y) == kMark) {
                ++lit;
                EXPECT_TRUE(inside(scaled, x, y));
            }
        }
    }
    EXPECT_GT(lit, 0);
}

TEST_F(TextLayout, CharactersOfEitherSetMapToTheirGlyphs)
{
    // Accented letters are as wide as plain ones in these fonts, so each
    // range must cover what its plain twin covers; a byte taken for a
    // character would shift them.
    KTextBlockObject plain { KTextBlock(KString("cafe ole bebe")) };
    KTextBlockObject accented { KTextBlock(KString("caf\xE9 ol\xE9 b\xE9"
                                                   "b\xE9")) };
    KString macText("caf\x8E ol\x8E b\x8E"
                    "b\x8E");
    macText.setCharSet(KString::MacintoshSet);
    KTextLine macLine(macText);
    KTextBlock macBlock;
    *macBlock.getLine(0) = macLine;
    KTextBlockObject mac(macBlock);
    for (auto [start, length] : { std::pair { 5, 3 }, std::pair { 12, 1 }, std::pair { 3, 1 } }) {
        std::vector<KWideRectangle> expected = plain.getCharacterBoxes(start, length);
        ASSERT_EQ(expected.size(), 1u);
        for (KTextBlockObject* object : { &accented, &mac }) {
            std::vector<KWideRectangle> boxes = object->getCharacterBoxes(start, length);
            ASSERT_EQ(boxes.size(), 1u);
            EXPECT_NEAR(boxes[0].x, expected[0].x, 1) << start;
            EXPECT_NEAR(boxes[0].width, expected[0].width, 1) << start;
        }
    }
    accented.setWidth(accented.getBounds().width);
    expectMarkInsideBoxes(accented, 5, 3, accented.getBounds().width, int16_t(accented.getHeight()));
}

TEST_F(TextLayout, SingleLineMarksStayOnTheirCharacters)
{
    KTextBlockObject object { KTextBlock(KString(kSentence)) };
    object.setWidth(200);
    std::vector<int32_t> lines = object.getLineStarts();
    ASSERT_GE(lines.size(), 2u);
    // From two characters before the first wrap to two after it.
    int32_t start = lines[1] - 3;
    std::vector<KWideRectangle> selection = object.getCharacterBoxes(start, 5);
    ASSERT_EQ(selection.size(), 2u);
    EXPECT_EQ(selection[0].getRight(), 200);
    EXPECT_NEAR(selection[0].getBottom(), selection[1].y, 1);

    object.setSingleLineMode(KTextBlockObject::SingleLineMarks);
    std::vector<KWideRectangle> marks = object.getCharacterBoxes(start, 5);
    ASSERT_EQ(marks.size(), 2u);
    EXPECT_LT(marks[0].getRight(), 200);
    EXPECT_EQ(marks[1].x, 0);
    expectMarkInsideBoxes(object, start, 5, 200, 200);
}

TEST_F(TextLayout, AlignmentEmptyLinesAndClippingToTheTarget)
{
    KTextBlock block { KString("mid\r\rline") };
    block.setAlignment(KTextBlock::AlignCentre);
    KTextBlockObject object(block);
    object.setWidth(300);
    EXPECT_EQ(object.getLineStarts(), (std::vector<int32_t> { 0, 4, 5 }));
    std::vector<KWideRectangle> word = object.getCharacterBoxes(0, 3);
    ASSERT_EQ(word.size(), 1u);
    EXPECT_NEAR(word[0].x, 300 - word[0].getRight(), 2);
    // The empty line is as high as the text around it.
    std::vector<KWideRectangle> last = object.getCharacterBoxes(5, 4);
    ASSERT_EQ(last.size(), 1u);
    EXPECT_NEAR(last[0].y, 2 * word[0].height, 2);

    // Nothing is painted outside the rectangle the text is drawn in, mark
    // and text alike, however far the text runs below it.
    KTextBlockObject longText { KTextBlock(KString(kSentence)) };
    longText.setWidth(100);
    longText.setSelection(0, 40);
    KImagePtr image = gfx::makeImage(160, 160);
    gfx::fill(*image, gfx::kWhite);
    KGraphicRectangle target(30, 20, 100, 40);
    longText.drawIn(image->getDevice(), target);
    int64_t painted = 0;
    for (int32_t y = 0; y < 160; ++y) {
        for (int32_t x = 0; x < 160; ++x) {
            if (gfx::pixel(*image, x, y) == gfx::kWhite)
                continue;
            ++painted;
            ASSERT_TRUE(target.contains(x, y)) << x << "," << y;
        }
    }
    EXPECT_GT(painted, 0);
}

TEST_F(TextLayout, ALineObjectStaysOnOneLine)
{
    KTextLineObject line { KTextLine(KString(kSentence)) };
    KTextBlockObject wrapped { KTextBlock(KString(kSentence)) };
    wrapped.setWidth(200);
    EXPECT_GT(line.getWidth(), 600);
    EXPECT_EQ(line.getBounds().height, line.getHeight());
    EXPECT_LT(line.getHeight() * 2, wrapped.getHeight());
    EXPECT_EQ(line.getCharacterBoxes(0, 76).size(), 1u);
}
