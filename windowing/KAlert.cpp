#include "windowing/KAlert.h"

#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "windowing/KNativeLayer.h"
#include "windowing/KServices.h"
#include "windowing/KStaticTextNativeControl.h"

namespace {

KGraphicRectangle& defaultRectangle()
{
    static KGraphicRectangle rectangle(0, 0, 400, 140);
    return rectangle;
}

int32_t ask(KNativeAlertRequest::Style style, const KString& title, const KString& text)
{
    KNativeAlertRequest setup;
    setup.style = style;
    setup.title = title.c_str();
    setup.text = text.c_str();
    return KNativeLayer::get().messageBox(setup);
}

} // namespace

K_DEFINE_CLASS(KAlert, KDialog)

KAlert::KAlert()
    : textControl(new KStaticTextNativeControl(KString(), KWideRectangle(10, 10, 380, 90)))
{
    setTitle(kTranslate("Alert"));
    setBounds(defaultRectangle());
    setStandardButtons(OkButton);
    addControl(*textControl);
}

KAlert::KAlert(const KString& text)
    : KAlert()
{
    setText(text);
}

KAlert::~KAlert() = default;

void KAlert::setText(const KString& text) { textControl->setText(text); }

const KString& KAlert::getText() const { return textControl->getText(); }

void KAlert::setImage(KImage* value)
{
    image = value;
    invalidate();
}

void KAlert::open(OpenMode mode, int32_t standardButtons)
{
    beep();
    KDialog::open(mode, standardButtons);
}

KEventReturn KAlert::doPaint(KWindowEvent&)
{
    if (image && image->hasImage())
        image->drawAt(*this, KGraphicPoint(0, 0));
    return 0;
}

const KGraphicRectangle& KAlert::getDefaultRectangle() { return defaultRectangle(); }

void KAlert::setDefaultRectangle(const KGraphicRectangle& rectangle) { defaultRectangle() = rectangle; }

void alert(const KString& title, const KString& text) { ask(KNativeAlertRequest::Information, title, text); }

int32_t askYesNo(const KString& title, const KString& text)
{
    return ask(KNativeAlertRequest::YesNo, title, text) == KNativeAnswer::Yes ? 2 : 3;
}

int32_t askYesNoDefaultNo(const KString& title, const KString& text)
{
    return ask(KNativeAlertRequest::YesNoDefaultNo, title, text) == KNativeAnswer::Yes ? 2 : 3;
}

int32_t askYesNoCancel(const KString& title, const KString& text)
{
    int32_t answer = ask(KNativeAlertRequest::YesNoCancel, title, text);
    if (answer == KNativeAnswer::Yes)
        return 2;
    return answer == KNativeAnswer::No ? 3 : 1;
}

int32_t askOkCancel(const KString& title, const KString& text)
{
    return ask(KNativeAlertRequest::OkCancel, title, text) == KNativeAnswer::Ok ? 1 : 0;
}

void beep()
{
    if (KNativeLayer* layer = KNativeLayer::current())
        layer->beep();
}

KImage* KAlert::getImage() const { return image.get(); }
