// The edit field's text in the native side's form and back, its style
// changes without a widget, and the text format menu's events.

#include "WindowingTestSupport.h"

#include "graphics/KFont.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyleRun.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KFormatEvent.h"
#include "windowing/KTextFormatMenu.h"

namespace {

KTextStyle styleOf(const char* family, double size, int32_t face, const KColor& colour, int32_t flags = 0)
{
    KFont font(family, size, face);
    font.setStyleFlags(flags);
    return KTextStyle(font, colour);
}

// "Big" "small", an empty line of its own style, then "end".
KTextBlock mixedBlock()
{
    KTextStyle big = styleOf("Arial", 36, KFont::Bold, KColor(KColor::Red), 2);
    KTextStyle small = styleOf("Times New Roman", 12, KFont::Italic | KFont::Underline, KColor(KColor::Blue), 2);
    KTextStyle empty = styleOf("Courier New", 20, 0, KColor(KColor::Green), 2);
    KTextBlock block(KString("Big small\r\rend"), big, KTextBlock::AlignRight);
    block.setStyle(3, 6, small);
    block.getLine(1)->setStyle(0, 0, empty);
    block.setStyle(11, 3, small);
    return block;
}

std::string describe(const KTextBlock& block)
{
    std::string text = std::to_string(block.getAlignment());
    for (int32_t i = 0; i < block.getLineCount(); ++i) {
        const KTextLine& line = *block.getLine(i);
        text += " [" + std::string(line.getText().c_str());
        for (int32_t r = 0; r < line.getStyleRunCount(); ++r) {
            const KTextStyleRun& run = *line.getStyleRun(r);
            text += " " + std::to_string(run.getLength()) + ":" + run.getFont().getName().c_str() + "/"
                    + std::to_string(int(run.getFont().getSize())) + "/" + std::to_string(run.getFont().getFace()) + "/"
                    + std::to_string(run.getColour().getRed() >> 8) + "."
                    + std::to_string(run.getColour().getGreen() >> 8) + "."
                    + std::to_string(run.getColour().getBlue() >> 8) + "/"
                    + std::to_string(run.getFont().getStyleFlags().getValue());
        }
        text += "]";
    }
    return text;
}

} // namespace

TEST(EditFieldTest, BlocksGoToTheNativeFormAndComeBackWithTheirStylesAndEmptyLines)
{
    KTextBlock block = mixedBlock();
    KNativeStyledText native = KEditFieldControl::toNative(block);
    EXPECT_EQ(native.text, "Big small\r\rend");
    EXPECT_EQ(native.alignment, KTextBlock::AlignRight);
    // The first break carries the style its line ends in, the second the
    // empty line's own.
    ASSERT_EQ(native.runs.size(), 4u);
    EXPECT_EQ(native.runs[0].length, 3);
    EXPECT_EQ(native.runs[1].length, 7);
    EXPECT_EQ(native.runs[2].length, 1);
    EXPECT_EQ(native.runs[2].style.family, "Courier New");
    EXPECT_EQ(native.runs[3].length, 3);
    EXPECT_EQ(native.runs[1].style.face, KFont::Italic | KFont::Underline);

    EXPECT_EQ(describe(KEditFieldControl::fromNative(native, &block)), describe(block));
    // Without the block, the looks come back and only the flags are lost.
    KTextBlock plain = KEditFieldControl::fromNative(native);
    EXPECT_EQ(plain.getPlainText(), block.getPlainText());
    EXPECT_EQ(plain.getLine(1)->getStyleRun(0)->getFont().getName(), "Courier New");
    EXPECT_EQ(plain.getLine(0)->getStyleRun(0)->getFont().getStyleFlags().getValue(), 0);

    // Empty text keeps the style typing starts with; a last empty line types
    // on in the style of the break before it.
    KTextBlock empty(KString(""), styleOf("Verdana", 18, KFont::Bold, KColor(KColor::Black)));
    KNativeStyledText none = KEditFieldControl::toNative(empty);
    ASSERT_EQ(none.runs.size(), 1u);
    EXPECT_EQ(none.runs[0].length, 0);
    EXPECT_EQ(KEditFieldControl::fromNative(none).getStyleAt(0).getFont().getName(), "Verdana");
    KNativeStyledText trailing = KEditFieldControl::toNative(KTextBlock(KString("a\r"), empty.getStyleAt(0)));
    KTextBlock back = KEditFieldControl::fromNative(trailing);
    ASSERT_EQ(back.getLineCount(), 2);
    EXPECT_EQ(back.getLine(1)->getStyleRun(0)->getFont().getSize(), 18.0);
    // Runs that leave characters uncovered give them the last style.
    KNativeStyledText shortRuns;
    shortRuns.text = "abc";
    shortRuns.runs.push_back({ 1, KEditFieldControl::toNative(empty.getStyleAt(0)) });
    EXPECT_EQ(KEditFieldControl::fromNative(shortRuns).getLine(0)->getStyleRunCount(), 1);
}

TEST(EditFieldTest, AFieldWithoutAWidgetChangesItsOwnSelection)
{
    KEditFieldControlPtr field(new KEditFieldControl(1, KWideRectangle(0, 0, 200, 50)));
    field->setTextBlock(KTextBlock(KString("one two"), styleOf("Arial", 24, KFont::Italic, KColor(KColor::Black))));
    field->setSelection(4, 99);
    int32_t start = 0, length = 0;
    field->getSelection(start, length);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(length, 3);
    // Bold was off at the selection's start: only bold changes, the
    // italic stays.
    field->setFontStyle(KFont::Bold | KFont::Italic);
    field->setFontSize(0.01);
    field->setAlignment(KTextBlock::AlignCentre);
    KTextBlock block = field->getTextBlock();
    ASSERT_EQ(block.getLine(0)->getStyleRunCount(), 2);
    EXPECT_EQ(block.getLine(0)->getStyleRun(1)->getFont().getFace(), KFont::Bold | KFont::Italic);
    EXPECT_EQ(block.getLine(0)->getStyleRun(1)->getFont().getSize(), KTextStyle::kSmallestFontSize);
    EXPECT_EQ(block.getAlignment(), KTextBlock::AlignCentre);
    EXPECT_EQ(field->getSelectionStyle().getFont().getFace(), KFont::Bold | KFont::Italic);
    // The same style asked again: the whole selection takes all three bits.
    field->setSelection(0, 7);
    field->setFontStyle(KFont::Italic);
    EXPECT_EQ(field->getTextBlock().getLine(0)->getStyleRunCount(), 2);
    EXPECT_EQ(field->getTextBlock().getLine(0)->getStyleRun(1)->getFont().getFace(), KFont::Italic);
}

class FormatMenuTest : public FakeLayerTest { };

TEST_F(FormatMenuTest, ItemsMakeEventsOfTheOneValueTheyChangeOnlyWhileEnabled)
{
    KTextFormatMenuPtr menu(new KTextFormatMenu());
    KTextStyle style = styleOf("Marker Felt", 24, KFont::Italic, KColor(KColor::Black));
    KColor white(KColor::White);
    std::vector<KNativeMenuItem> items = menu->buildItems(style, KTextBlock::AlignCentre);
    EXPECT_FALSE(items[0].enabled);
    EXPECT_FALSE(menu->makeEvent(KTextFormatMenu::Bold, style, white));

    menu->setEnabled(true);
    items = menu->buildItems(style, KTextBlock::AlignCentre);
    // The current family is offered after the installed ones, ticked.
    const std::vector<KNativeMenuItem>& faces = items[0].children;
    ASSERT_FALSE(faces.empty());
    EXPECT_EQ(faces.back().text, "Marker Felt");
    EXPECT_TRUE(faces.back().checked);
    EXPECT_EQ(faces.front().text, "Arial");
    EXPECT_EQ(items[1].children.front().text, "9");
    EXPECT_EQ(items[1].children.back().text, "72");

    KFormatEventPtr face = menu->makeEvent(faces.back().id, style, white);
    ASSERT_TRUE(face);
    KString family;
    EXPECT_TRUE(KFormatEvent::getFontFace(*face, family));
    EXPECT_EQ(family, "Marker Felt");
    double size = 0;
    EXPECT_FALSE(KFormatEvent::getFontSize(*face, size));
    EXPECT_TRUE(KFormatEvent::isFormatEvent(*face));
    EXPECT_EQ(face->getType(), 8);

    KFormatEventPtr bold = menu->makeEvent(KTextFormatMenu::Bold, style, white);
    int32_t faceBits = 0;
    ASSERT_TRUE(KFormatEvent::getFontStyle(*bold, faceBits));
    EXPECT_EQ(faceBits, KFont::Bold | KFont::Italic);
    KFormatEventPtr sized = menu->makeEvent(KTextFormatMenu::FirstSize + 48, style, white);
    ASSERT_TRUE(KFormatEvent::getFontSize(*sized, size));
    EXPECT_EQ(size, 48.0);
    KFormatEventPtr right
        = menu->makeEvent(KTextFormatMenu::FirstAlignment + int32_t(KTextBlock::AlignRight), style, white);
    int16_t alignment = 0;
    ASSERT_TRUE(KFormatEvent::getAlignment(*right, alignment));
    EXPECT_EQ(alignment, KTextBlock::AlignRight);
    EXPECT_FALSE(menu->makeEvent(KTextFormatMenu::FirstAlignment + 7, style, white));

    // The colours go through the chooser; a cancel makes nothing.
    EXPECT_FALSE(menu->makeEvent(KTextFormatMenu::BackgroundColour, style, white));
    layer.answerColour({ 0xFFFF, 0, 0 });
    KFormatEventPtr back = menu->makeEvent(KTextFormatMenu::BackgroundColour, style, white);
    KColor colour;
    ASSERT_TRUE(back && KFormatEvent::getBackgroundColor(*back, colour));
    EXPECT_EQ(colour.getRed(), 0xFFFF);
    EXPECT_FALSE(KFormatEvent::getFontColor(*back, colour));
    EXPECT_TRUE(menu->choose(KTextFormatMenu::Italic, style, white));
    EXPECT_TRUE(hasPending(KFormatEvent::classRecord, KFormatEvent::kFormatType));
}
