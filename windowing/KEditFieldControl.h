#pragma once

#include "graphics/KColor.h"
#include "graphics/KTextBlock.h"
#include "graphics/KTextStyle.h"
#include "windowing/KControl.h"
#include "windowing/KNativeTypes.h"
#include "windowing/KWindowingForward.h"

// A text field typed into in place. Mode 3 holds styled text of several
// lines (a KTextBlock), shown over the page without a border: each
// character keeps its font, size, face and colour, what the user types
// takes the style before the caret, and a style change goes to the
// selection (or, with nothing selected, to what is typed next). Modes 1
// and 2 are plain one-line and multi-line fields.
//
// Character positions are the block's: the lines joined by one CR each.
// While the field has no native widget (its window is not open) it keeps
// the block itself, and style changes apply to its own selection.
class KEditFieldControl : public KControl {
    K_DECLARE_CLASS(KEditFieldControl)
public:
    enum Mode : int32_t { SingleLine = 1, MultiLine = 2, StyledText = 3 };

    KEditFieldControl();
    KEditFieldControl(int32_t id, const KWideRectangle& bounds, int32_t mode = StyledText);
    ~KEditFieldControl() override;

    int32_t getMode() const { return mode; }

    // --- Text ---------------------------------------------------------------
    // Loads the block: nothing selected, the caret at the start.
    void setTextBlock(const KTextBlock& block);
    // The text as the user left it. Styles that look the same as one the
    // loaded block had come back as that style, with all its settings.
    KTextBlock getTextBlock() const;
    void setBackColour(const KColor& colour);
    const KColor& getBackColour() const { return backColour; }
    // Without a background the page shows through the field, as the text
    // will stand on it.
    void setTransparentBackground(bool transparent);
    bool hasTransparentBackground() const { return transparentBackground; }

    // --- Selection ------------------------------------------------------------
    void selectAll();
    void setSelection(int32_t start, int32_t length);
    void getSelection(int32_t& start, int32_t& length) const;
    // The style of the selection's first character, or the style typing
    // would take at the caret.
    KTextStyle getSelectionStyle() const;
    int16_t getAlignment() const;

    // The clipboard commands on the selection, done by the native field.
    void editText(KNativeTextEdit edit);

    // --- Style changes (the selection's; the alignment is the whole's) --------
    void setFontFace(const KString& family);
    void setFontSize(double points);
    // KFont's face bits. The bold, italic and underline bits that differ
    // from the selection's first character change over the whole
    // selection; when none differs, the selection takes all three.
    void setFontStyle(int32_t face);
    void setTextColour(const KColor& colour);
    void setAlignment(int16_t alignment);

    // The menu the field shows on a right click; none without one.
    void setFormatMenu(KTextFormatMenu* menu);
    KTextFormatMenu* getFormatMenu() const;

    void doFocusChange(int32_t change) override;
    // A key the window hands over goes into the text.
    KEventReturn doKeyDown(KKeyEvent& event) override;
    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "editField"; }
    void describe(KJsonWriter& out) const override;

    // The block in the native side's form, and back; `model` is the block
    // whose styles are taken again where they look the same.
    static KNativeStyledText toNative(const KTextBlock& block);
    static KTextBlock fromNative(const KNativeStyledText& text, const KTextBlock* model = nullptr);
    static KNativeTextStyle toNative(const KTextStyle& style);

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    void showBackground();
    void change(const KNativeStyleChange& change);
    void changeHeldBlock(const KNativeStyleChange& change);
    void showMenuAt(const KNativeRecord& record);

    int32_t mode = StyledText;
    KTextBlockPtr block;
    KColor backColour { KColor::White };
    bool transparentBackground = false;
    int32_t selectionStart = 0;
    int32_t selectionLength = 0;
    KTextFormatMenuPtr formatMenu;
};
