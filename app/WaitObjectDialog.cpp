#include "app/WaitObjectDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "kernel/KLocalizer.h"
#include "tape/WaitObject.h"
#include "windowing/KCheckBoxNativeControl.h"

namespace {

constexpr int32_t kFirstBoxId = 20;

constexpr const char* kBoxTexts[WaitObjectDialog::FlagCount] = {
    kTranslatable("Wait for Sound Completion"), kTranslatable("Wait for Speech Completion"),
    kTranslatable("Wait User Input"),           kTranslatable("Visual Warning"),
    kTranslatable("Stop Playing Sounds"),       kTranslatable("Stop Speech"),
};

} // namespace

K_DEFINE_CLASS(WaitObjectDialog, ElementDialog)

WaitObjectDialog::WaitObjectDialog()
{
    setTitle(uiText("Wait"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

WaitObjectDialog::~WaitObjectDialog() = default;

bool WaitObjectDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const WaitObject*>(&candidate) != nullptr;
}

void WaitObjectDialog::makeControls()
{
    const auto& wait = static_cast<const WaitObject&>(*getElement());
    const bool values[FlagCount] = { wait.getWaitForSounds(), wait.getWaitForSpeech(), wait.getWaitForUser(),
                                     wait.getVisualWarning(), wait.getStopSounds(),    wait.getStopSpeech() };
    for (int32_t i = 0; i < FlagCount; ++i) {
        // A gap parts what is waited for from what is done at the end.
        int32_t y = 16 + i * 28 + (i >= StopSounds ? 10 : 0);
        boxes[size_t(i)] = kAdopt(new KCheckBoxNativeControl(kFirstBoxId + i, uiTranslate(kBoxTexts[i]),
                                                             KWideRectangle(20, y, 260, 22), values[i]));
        addControl(*boxes[size_t(i)]);
    }
}

bool WaitObjectDialog::isChecked(Flag flag) const
{
    const auto& box = boxes[size_t(flag)];
    return box && box->isChecked();
}

void WaitObjectDialog::setChecked(Flag flag, bool on)
{
    if (const auto& box = boxes[size_t(flag)])
        box->setChecked(on);
}

KString WaitObjectDialog::refusal() const
{
    if (isChecked(WaitSounds) || isChecked(WaitSpeech) || isChecked(WaitUser))
        return KString();
    return uiText("Please check at least one item to wait for.");
}

void WaitObjectDialog::applyValues()
{
    auto& wait = static_cast<WaitObject&>(*getElement());
    wait.setWaitForSounds(isChecked(WaitSounds));
    wait.setWaitForSpeech(isChecked(WaitSpeech));
    wait.setWaitForUser(isChecked(WaitUser));
    wait.setVisualWarning(isChecked(VisualWarning));
    wait.setStopSounds(isChecked(StopSounds));
    wait.setStopSpeech(isChecked(StopSpeech));
}
