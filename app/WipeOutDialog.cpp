#include "app/WipeOutDialog.h"

#include "app/UiText.h"
#include "graphics/KColor.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KPath.h"
#include "kernel/KStringBag.h"
#include "tape/ImageTapePage.h"
#include "tape/Tape.h"
#include "tape/TapeMediaImport.h"
#include "tape/WipeOut.h"
#include "windowing/KAlert.h"
#include "windowing/KButtonNativeControl.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KColourSwatchNativeControl.h"
#include "windowing/KControlActionEvent.h"
#include "windowing/KPictureNativeControl.h"
#include "windowing/KPopUpListNativeControl.h"
#include "windowing/KRadioGroupNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int32_t kEffectId = 20;
constexpr int32_t kWithId = 21;
constexpr int32_t kColourId = 22;
constexpr int32_t kImportId = 23;
constexpr int32_t kActorsId = 24;
constexpr int32_t kPreviewId = 25;

} // namespace

K_DEFINE_CLASS(WipeOutDialog, ElementDialog)

WipeOutDialog::WipeOutDialog()
{
    setTitle(uiText("Page Transition"));
    setBounds(KGraphicRectangle(140, 140, kWidth, kHeight));
}

WipeOutDialog::~WipeOutDialog() { stopTrying(); }

bool WipeOutDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const WipeOut*>(&candidate) != nullptr;
}

void WipeOutDialog::makeControls()
{
    const auto& transition = static_cast<const WipeOut&>(*getElement());
    file = transition.getImageFile();
    addLabel(uiText("Effect"), 16, 20, 100);
    std::vector<KString> effects;
    KStringBagPtr names = WipeOut::getEffectNames();
    for (int32_t i = 0; i < names->getSize(); ++i)
        effects.push_back(*names->getStringAt(i));
    effectList = kAdopt(new KPopUpListNativeControl(kEffectId, KWideRectangle(120, 14, 220, 30), effects));
    effectList->setSelected(std::clamp(transition.getEffect(), 0, int32_t(effects.size()) - 1));
    addControl(*effectList);
    addLabel(uiText("With"), 16, 62, 100);
    withGroup = kAdopt(
        new KRadioGroupNativeControl(kWithId, KWideRectangle(120, 56, 120, 60), { uiText("Color"), uiText("Image") }));
    withGroup->setSelected(transition.getBackground() == WipeOut::ImageBackground ? 1 : 0);
    addControl(*withGroup);
    colourSwatch
        = kAdopt(new KColourSwatchNativeControl(kColourId, KWideRectangle(250, 58, 40, 22), transition.getColour()));
    addControl(*colourSwatch);
    fileText = kAdopt(new KStaticTextNativeControl(KString(), KWideRectangle(16, 128, 230, 20)));
    addControl(*fileText);
    importButton = kAdopt(new KButtonNativeControl(kImportId, uiText("Import"), KWideRectangle(250, 122, 90, 30)));
    addControl(*importButton);
    actorsBox = addCheckBox(kActorsId, uiText("The Actors Leave the Stage"), 166, transition.getRemovesActors());
    preview = kAdopt(new KPictureNativeControl(kPreviewId, KWideRectangle(360, 14, kPreviewWidth, kPreviewHeight)));
    addControl(*preview);
    showFile();
}

void WipeOutDialog::showFile()
{
    if (fileText)
        fileText->setText(file.getPath().isEmpty() ? uiText("No image file") : file.getObjectName());
    playPreview();
}

bool WipeOutDialog::withImage() const { return withGroup && withGroup->getSelected() == 1; }

void WipeOutDialog::copyValuesInto(WipeOut& transition) const
{
    transition.setEffect(effectList->getSelected());
    transition.setBackground(withImage() ? WipeOut::ImageBackground : WipeOut::ColourBackground);
    transition.setColour(colourSwatch->getColour());
    transition.setImageFile(file);
    transition.setRemovesActors(actorsBox->isChecked());
}

bool WipeOutDialog::takeFile(const KFileReference& chosen)
{
    KImage probe;
    if (!probe.createFromPath(chosen.getPath().getNativeText()) || !probe.hasImage()) {
        alert(getTitle(), uiText("Unsupported Format!"));
        return false;
    }
    KFileReference imported;
    if (!importIntoTapeMedia(chosen, imported))
        return false;
    file = imported;
    if (withGroup)
        withGroup->setSelected(1);
    showFile();
    return true;
}

void WipeOutDialog::importFile()
{
    KFileReference chosen;
    if (askImportFile(chosen))
        takeFile(chosen);
}

// The page before the transition: the story's colours, so that every
// effect shows against something.
void WipeOutDialog::playPreview()
{
    stopTrying();
    if (!preview || !effectList)
        return;
    KGraphicSize size(kPreviewWidth, kPreviewHeight);
    previewPage = kAdopt(new ImageTapePage(size));
    previewTape = kAdopt(new Tape());
    previewTape->setPageSize(size);
    previewTape->setSpriteSystem(*previewPage);
    KGraphicDevice& device = previewPage->getPageDevice();
    device.fillRectangle(KGraphicRectangle(0, 0, size.width, size.height), KColor(0xF000, 0xE000, 0xB000));
    device.fillRectangle(KGraphicRectangle(30, 30, 100, 60), KColor(0x2000, 0x4000, 0x9000));
    previewEffect = kAdopt(new WipeOut());
    copyValuesInto(*previewEffect);
    KFileReference where(tapeMediaPath(getTapeEdited(), file));
    previewEffect->setImageFile(where);
    previewTape->addElement(*previewEffect);
    previewEffect->startPlaying();
    showPreviewFrame();
    // A cut is over as it starts.
    if (previewEffect->getEffect() == WipeOut::Cut)
        return;
    if (!previewTimer) {
        previewTimer = kAdopt(new KTimer());
        previewTimer->setMode(KTimer::Relative);
        previewTimer->setRepeat(true);
        previewTimer->setTarget(this);
    }
    previewTimer->setInterval(kPreviewTick);
    previewTimer->start();
}

bool WipeOutDialog::isPreviewPlaying() const { return previewTimer && previewTimer->isRunning(); }

void WipeOutDialog::timerFired(KTimer& timer)
{
    if (&timer != previewTimer.get() || !previewEffect)
        return;
    bool done = previewEffect->getStep() > previewEffect->getStepCount();
    if (!done)
        previewEffect->playStep();
    showPreviewFrame();
    if (done)
        previewTimer->stop();
}

void WipeOutDialog::showPreviewFrame()
{
    if (preview && previewPage)
        preview->setPicture(previewPage->getPageImage());
}

void WipeOutDialog::stopTrying()
{
    if (previewTimer)
        previewTimer->stop();
    if (previewEffect)
        previewEffect->stopPlaying();
    previewEffect.clear();
    if (previewTape)
        previewTape->clearSpriteSystem();
    previewTape.clear();
    previewPage.clear();
}

KEventReturn WipeOutDialog::doControlAction(KControlActionEvent& event)
{
    KThing* source = event.getSource();
    if (importButton && source == importButton.get()) {
        importFile();
        return 1;
    }
    KEventReturn handled = ElementDialog::doControlAction(event);
    if (source == effectList.get() || source == withGroup.get() || source == colourSwatch.get()) {
        playPreview();
        return 1;
    }
    return handled;
}

KString WipeOutDialog::refusal() const
{
    if (withImage() && file.getPath().isEmpty())
        return uiText("Please Select An Image File.");
    return KString();
}

void WipeOutDialog::applyValues() { copyValuesInto(static_cast<WipeOut&>(*getElement())); }
