// Typing over a text element in place: the edit field over the page, its
// keys, its end by a click or Escape, the text format menu and the format
// event with the defaults for new text.

#include "AppTestSupport.h"

#include "app/StylusActions.h"
#include "app/StylusWindow.h"
#include "graphics/KFont.h"
#include "graphics/KTextLine.h"
#include "graphics/KTextStyleRun.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "windowing/KEditFieldControl.h"
#include "windowing/KEventTranslator.h"
#include "windowing/KFormatEvent.h"
#include "windowing/KKeyEvent.h"
#include "windowing/KTextFormatMenu.h"

#include <gtest/gtest.h>

using namespace apptest;

namespace {

const KGraphicRectangle kTextPlace(100, 100, 200, 60);

class TextEditTest : public AppTest {
protected:
    // A text on the tape at the position, in Arial 24 with the style flags
    // new text has, so that a style coming back keeps them.
    StylusText& addText(TestApplication& app, const char* words)
    {
        Tape& tape = *app.getProject()->getTape();
        StylusTextPtr text(new StylusText());
        KFont font("Arial", 24.0);
        font.setStyleFlags(2);
        text->setTextBlock(KTextBlock(KString(words), KTextStyle(font, KColor(KColor::Blue))));
        text->setRect(kTextPlace);
        tape.addElement(*text);
        StylusWindow::current()->redrawPage(true);
        return *text;
    }

    // Characters as the keyboard sends them to the main window.
    void typeChars(const std::string& characters)
    {
        for (char c : characters) {
            KNativeRecord r;
            r.window = StylusWindow::current();
            r.message = KNativeMessage::Char;
            r.param1 = static_cast<unsigned char>(c);
            r.time = layer.now();
            kksDeliverNativeRecord(r);
        }
    }

    // The fake's record of the field's widget.
    const KFakeNativeLayer::Control* fieldWidget()
    {
        KEditFieldControl* field = StylusWindow::current()->getEditField();
        return field ? layer.controlOf(field->getNativeControl()) : nullptr;
    }

    static const KTextStyleRun& runOf(const StylusText& text, int32_t line, int32_t run)
    {
        return *text.getTextBlock().getLine(line)->getStyleRun(run);
    }
};

} // namespace

TEST_F(TextEditTest, APressOnATextOpensTheFieldOverItAndTypingAndAClickAwayEndInTheElement)
{
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        StylusText& text = addText(app, "Hello");
        // Six pixels off the rectangle still opens the field.
        press(kTextPlace.x - 6, kTextPlace.y + 10);
        release(kTextPlace.x - 6, kTextPlace.y + 10);
        ASSERT_EQ(window.getEditMode(), EditMode::Text);
        ASSERT_NE(fieldWidget(), nullptr);
        EXPECT_EQ(fieldWidget()->setup.kind, KNativeControlKind::StyledText);
        KGraphicRectangle page = window.getPageRectangle();
        EXPECT_EQ(fieldWidget()->bounds,
                  (KNativeRect { page.x + kTextPlace.x, page.y + kTextPlace.y, kTextPlace.width, kTextPlace.height }));
        EXPECT_EQ(layer.focusedControl(), window.getEditField()->getNativeControl());
        EXPECT_TRUE(text.isEdited());
        EXPECT_TRUE(app.getFormatMenu()->isEnabled());
        int32_t start = -1, length = -1;
        window.getEditField()->getSelection(start, length);
        EXPECT_EQ(start, 0);
        EXPECT_EQ(length, 5);

        // Every key goes to the field, the step keys too: the whole text is
        // replaced, and the brush keys paint nothing.
        typeChars("Bye");
        key(KVirtualKey::Return);
        typeChars("now");
        EXPECT_EQ(tape.getPosition(), 1);
        EXPECT_EQ(window.getEditMode(), EditMode::Text);

        // A press away from it ends the editing: no stroke.
        press(600, 500);
        release(600, 500);
        EXPECT_EQ(window.getEditMode(), EditMode::None);
        EXPECT_EQ(window.getEditField(), nullptr);
        EXPECT_EQ(tape.getCount(), 1);
        EXPECT_FALSE(text.isEdited());
        EXPECT_FALSE(app.getFormatMenu()->isEnabled());
        EXPECT_EQ(text.getPlainText(), "Bye\rnow");
        // The typed text took the style it replaced, with all its settings.
        ASSERT_EQ(text.getTextBlock().getLineCount(), 2);
        EXPECT_EQ(text.getTextBlock().getLine(1)->getStyleRunCount(), 1);
        EXPECT_EQ(runOf(text, 1, 0).getFont().getStyleFlags().getValue(), 2);
        EXPECT_EQ(runOf(text, 1, 0).getColour().getBlue(), 0xFFFF);
        EXPECT_EQ(text.getBounds(), kTextPlace);
        EXPECT_TRUE(tape.isModified());
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(TextEditTest, ATextOpenedAndLeftAsItWasChangesNothing)
{
    // Stopping on a text opens it for typing; leaving it untouched keeps
    // the element as it was, so that the thumbnails after it stay.
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        StylusText& text = addText(app, "Still");
        const KTextBlock* block = &text.getTextBlock();
        window.startEditText(text);
        ASSERT_EQ(window.getEditMode(), EditMode::Text);
        key(KVirtualKey::Escape);
        EXPECT_EQ(window.getEditMode(), EditMode::None);
        EXPECT_EQ(&text.getTextBlock(), block) << "the element keeps its own block";
        EXPECT_EQ(text.getBounds(), kTextPlace);

        // A change of colour alone is a change.
        window.startEditText(text);
        window.getEditField()->selectAll();
        window.getEditField()->setTextColour(KColor(KColor::Red));
        key(KVirtualKey::Escape);
        EXPECT_NE(&text.getTextBlock(), block);
        EXPECT_EQ(runOf(text, 0, 0).getColour().getRed(), 0xFFFF);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(TextEditTest, SevenPixelsOffATextPaintsAndATextLeftEmptyLeavesTheTape)
{
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        addText(app, "Gone");
        press(kTextPlace.x - 7, kTextPlace.y + 10);
        release(kTextPlace.x - 5, kTextPlace.y + 10);
        EXPECT_EQ(window.getEditMode(), EditMode::None);
        ASSERT_EQ(tape.getCount(), 2);
        tape.goToPosition(1);

        StylusText& blank = static_cast<StylusText&>(*tape.getAt(0));
        // A text without a background is typed over the page it stands on.
        blank.setTransparent(true);
        window.startEditText(blank);
        ASSERT_NE(window.getEditField(), nullptr);
        EXPECT_TRUE(layer.controlOf(window.getEditField()->getNativeControl())->colour.transparent);
        key(KVirtualKey::Back);
        typeChars("  ");
        key(KVirtualKey::Return);
        // Escape ends it; blanks and line breaks are no text.
        key(KVirtualKey::Escape);
        EXPECT_EQ(window.getEditMode(), EditMode::None);
        ASSERT_EQ(tape.getCount(), 1);
        EXPECT_EQ(tape.getAt(0)->getType(), StrokeType);
        EXPECT_EQ(tape.getPosition(), 0);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(TextEditTest, FormatEventsChangeTheSelectionAndAlwaysBecomeTheDefaults)
{
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        // Without a field the event only sets the defaults.
        KFormatEventPtr italic(new KFormatEvent());
        italic->setFontStyle(KFont::Italic);
        processNow(italic.get());
        EXPECT_EQ(app.getTextDefaults().getStyle().getFont().getFace(), KFont::Italic);

        StylusText& text = addText(app, "Hello World");
        window.startEditText(text);
        KEditFieldControl& field = *window.getEditField();
        field.setSelection(0, 5);
        KFormatEventPtr bold(new KFormatEvent());
        bold->setFontStyle(KFont::Bold);
        bold->setFontSize(36.0);
        bold->setFontColor(KColor(KColor::Red));
        post(bold.get());
        KFormatEventPtr centred(new KFormatEvent());
        centred->setAlignment(KTextBlock::AlignCentre);
        centred->setBackgroundColor(KColor(KColor::Yellow));
        post(centred.get());
        app.turn(2);
        // Nothing selected: the change waits for what is typed at the caret.
        field.setSelection(11, 0);
        KFormatEventPtr face(new KFormatEvent());
        face->setFontFace("Courier New");
        processNow(face.get());
        typeChars("!");
        window.stopEditing();

        ASSERT_EQ(text.getTextBlock().getLine(0)->getStyleRunCount(), 3);
        const KTextStyleRun& hello = runOf(text, 0, 0);
        EXPECT_EQ(hello.getLength(), 5);
        EXPECT_EQ(hello.getFont().getFace(), KFont::Bold);
        EXPECT_EQ(hello.getFont().getSize(), 36.0);
        EXPECT_EQ(hello.getColour().getRed(), 0xFFFF);
        EXPECT_EQ(hello.getFont().getStyleFlags().getValue(), 2);
        const KTextStyleRun& world = runOf(text, 0, 1);
        EXPECT_EQ(world.getLength(), 6);
        EXPECT_EQ(world.getFont().getFace(), 0);
        EXPECT_EQ(world.getFont().getSize(), 24.0);
        EXPECT_EQ(runOf(text, 0, 2).getFont().getName(), "Courier New");
        EXPECT_EQ(text.getTextBlock().getAlignment(), KTextBlock::AlignCentre);
        EXPECT_EQ(text.getBackColour().getBlue(), 0);

        const TextDefaults& defaults = app.getTextDefaults();
        EXPECT_EQ(defaults.getStyle().getFont().getFace(), KFont::Bold);
        EXPECT_EQ(defaults.getStyle().getFont().getSize(), 36.0);
        EXPECT_EQ(defaults.getStyle().getFont().getName(), "Courier New");
        EXPECT_EQ(defaults.getStyle().getColour().getRed(), 0xFFFF);
        EXPECT_EQ(defaults.getAlignment(), KTextBlock::AlignCentre);
        EXPECT_EQ(defaults.getBackColour().getGreen(), 0xFFFF);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(TextEditTest, TheFieldsMenuTicksItsSelectionAndPostsTheChoiceWhileASecondStartIsRefused)
{
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        StylusText& first = addText(app, "Bold me");
        StylusText& second = addText(app, "Other");
        window.startEditText(first);
        KEditFieldControl* field = window.getEditField();
        ASSERT_NE(field, nullptr);

        window.startEditText(second);
        ASSERT_EQ(layer.alerts().size(), 1u);
        EXPECT_EQ(layer.alerts().back().title, "StylusWindow::startEditText");
        EXPECT_EQ(layer.alerts().back().text, "EditField Already Open!");
        EXPECT_EQ(window.getEditField(), field);
        EXPECT_FALSE(second.isEdited());

        layer.answerPopUpMenu(KTextFormatMenu::Bold);
        ASSERT_TRUE(layer.rightClickControl(field->getNativeControl(), 150, 150));
        ASSERT_EQ(layer.popUpMenus().size(), 1u);
        const std::vector<KNativeMenuItem>& items = layer.popUpMenus().back().items;
        // Font, size, a separator, then bold, italic and underline.
        ASSERT_GE(items.size(), 6u);
        EXPECT_FALSE(items[0].children.empty());
        bool sizeTicked = false;
        for (const KNativeMenuItem& size : items[1].children)
            sizeTicked = sizeTicked || (size.checked && size.text == "24");
        EXPECT_TRUE(sizeTicked);
        EXPECT_TRUE(items[3].enabled);
        EXPECT_FALSE(items[3].checked);
        app.turn(2);
        window.stopEditing();
        EXPECT_EQ(runOf(first, 0, 0).getFont().getFace(), KFont::Bold);
        EXPECT_EQ(runOf(first, 0, 0).getLength(), 7);
        EXPECT_EQ(app.getTextDefaults().getStyle().getFont().getFace(), KFont::Bold);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}

TEST_F(TextEditTest, AnInsertedTextTakesTheDefaultsAndOpensForTypingAtOnce)
{
    runApp({}, [&](TestApplication& app) {
        StylusWindow& window = *StylusWindow::current();
        Tape& tape = *app.getProject()->getTape();
        KFormatEventPtr chosen(new KFormatEvent());
        chosen->setFontSize(36.0);
        chosen->setFontStyle(KFont::Italic);
        chosen->setBackgroundColor(KColor(KColor::Cyan));
        processNow(chosen.get());
        StylusActions::current()->insertElement(TextType);
        ASSERT_EQ(tape.getCount(), 1);
        auto& text = static_cast<StylusText&>(*tape.getCurrentElement());
        ASSERT_EQ(window.getEditMode(), EditMode::Text);
        EXPECT_EQ(runOf(text, 0, 0).getFont().getSize(), 36.0);
        EXPECT_EQ(text.getBackColour().getRed(), 0);
        // All of "New Text" is selected: typing replaces it.
        typeChars("Once upon a time");
        key(KVirtualKey::Escape);
        EXPECT_EQ(text.getPlainText(), "Once upon a time");
        EXPECT_EQ(runOf(text, 0, 0).getFont().getFace(), KFont::Italic);
        EXPECT_EQ(runOf(text, 0, 0).getFont().getStyleFlags().getValue(), 2);
        EXPECT_EQ(tape.getCount(), 1);
        layer.answerMessageBox(KNativeAnswer::No);
    });
}
