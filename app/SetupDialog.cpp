#include "app/SetupDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/KCheckBoxNativeControl.h"
#include "windowing/KSliderNativeControl.h"
#include "windowing/KStaticTextNativeControl.h"

#include <algorithm>

namespace {

constexpr int32_t kFirstBoxId = 20;
constexpr int32_t kSpeedId = 30;

KString optionText(SetupDialog::Option option)
{
    switch (option) {
    case SetupDialog::Looping:
        return uiText("Looping Animation");
    case SetupDialog::HideMenuBar:
        return uiText("Hide Menu Bar");
    default:
        return uiText("Hide Tools");
    }
}

} // namespace

K_DEFINE_CLASS(SetupDialog, KDialog)

SetupDialog::SetupDialog()
{
    setTitle(uiText("Animation Setup"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

SetupDialog::~SetupDialog() = default;

int32_t SetupDialog::flagOf(Option option)
{
    switch (option) {
    case Looping:
        return Tape::LoopingAnimation;
    case HideMenuBar:
        return Tape::HideMenuBar;
    default:
        return Tape::HideTools;
    }
}

int32_t SetupDialog::speedOfInterval(int32_t milliseconds)
{
    return std::clamp(kFastest + 1 - milliseconds, kSlowest, kFastest);
}

int32_t SetupDialog::intervalOfSpeed(int32_t value, int32_t was)
{
    if (value == speedOfInterval(was))
        return was;
    return kFastest + 1 - std::clamp(value, kSlowest, kFastest);
}

bool SetupDialog::isChecked(Option option) const
{
    return boxes[option] ? boxes[option]->isChecked() : checked[option];
}

void SetupDialog::setChecked(Option option, bool on)
{
    checked[option] = on;
    if (boxes[option])
        boxes[option]->setChecked(on);
}

int32_t SetupDialog::getSpeed() const { return speedSlider ? speedSlider->getIntegerValue() : speed; }

void SetupDialog::setSpeed(int32_t value)
{
    speed = std::clamp(value, kSlowest, kFastest);
    if (speedSlider)
        speedSlider->setValue(speed);
}

bool SetupDialog::open(Tape& onTape)
{
    tape = &onTape;
    for (int32_t option = 0; option < OptionCount; ++option)
        checked[option] = onTape.getFlags().test(flagOf(Option(option)));
    speed = speedOfInterval(onTape.getPlayInterval());
    return runModal() == getButtonId(OkButton);
}

void SetupDialog::open(OpenMode mode, int32_t standardButtons)
{
    KDialog::open(mode, standardButtons);
    if (!isOpen())
        return;
    for (int32_t option = 0; option < OptionCount; ++option) {
        boxes[option]
            = kAdopt(new KCheckBoxNativeControl(kFirstBoxId + option, optionText(Option(option)),
                                                KWideRectangle(16, 14 + option * 28, 320, 24), checked[option]));
        addControl(*boxes[option]);
    }
    addControl(*new KStaticTextNativeControl(uiText("Play Speed"), KWideRectangle(16, 104, 320, 20)));
    addControl(*new KStaticTextNativeControl(uiText("Slow"), KWideRectangle(16, 130, 50, 20)));
    speedSlider
        = kAdopt(new KSliderNativeControl(kSpeedId, KWideRectangle(70, 126, 220, 24), kSlowest, kFastest, speed));
    addControl(*speedSlider);
    addControl(*new KStaticTextNativeControl(uiText("Fast"), KWideRectangle(296, 130, 50, 20)));
}

void SetupDialog::close()
{
    for (int32_t option = 0; option < OptionCount; ++option)
        checked[option] = isChecked(Option(option));
    speed = getSpeed();
    KDialog::close();
}

KEventReturn SetupDialog::doDialogAction(int32_t buttonId)
{
    if (buttonId == getButtonId(OkButton) && tape)
        apply();
    return KDialog::doDialogAction(buttonId);
}

// The choices are part of the document: a change is a change to save.
void SetupDialog::apply()
{
    KFlagSet& flags = tape->getFlags();
    bool changed = false;
    for (int32_t option = 0; option < OptionCount; ++option) {
        int32_t bit = flagOf(Option(option));
        bool on = isChecked(Option(option));
        if (flags.test(bit) == on)
            continue;
        changed = true;
        if (on)
            flags.set(bit);
        else
            flags.clear(bit);
    }
    int32_t interval = intervalOfSpeed(getSpeed(), tape->getPlayInterval());
    if (interval != tape->getPlayInterval()) {
        tape->setPlayInterval(interval);
        changed = true;
    }
    if (changed) {
        tape->setModified();
        TapeHost::get().updateMenuBar();
    }
}
