#pragma once

#include "graphics/KGraphicRectangle.h"
#include "windowing/KDialog.h"

// A small framework dialog: an image at its top left corner, a text and
// an OK button. It beeps when it opens.
class KAlert : public KDialog {
    K_DECLARE_CLASS(KAlert)
public:
    KAlert();
    explicit KAlert(const KString& text);
    ~KAlert() override;

    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doPaint(KWindowEvent& event) override;

    void setText(const KString& text);
    const KString& getText() const;
    void setImage(KImage* value);
    KImage* getImage() const;

    // The rectangle every new alert takes.
    static const KGraphicRectangle& getDefaultRectangle();
    static void setDefaultRectangle(const KGraphicRectangle& rectangle);

private:
    KImagePtr image;
    KStaticTextNativeControlPtr textControl;
};

// The quick alerts: native message boxes that run modally. While one is
// up, every event is refused.
//
// An information box with an OK button.
void alert(const KString& title, const KString& text);
// 2 yes, 3 no.
int32_t askYesNo(const KString& title, const KString& text);
// The same with No as the default button.
int32_t askYesNoDefaultNo(const KString& title, const KString& text);
// 2 yes, 3 no, 1 cancel.
int32_t askYesNoCancel(const KString& title, const KString& text);
// 1 OK, 0 cancel.
int32_t askOkCancel(const KString& title, const KString& text);
void beep();
