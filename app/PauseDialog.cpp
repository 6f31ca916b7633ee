#include "app/PauseDialog.h"

#include "app/UiText.h"
#include "kernel/KClass.h"
#include "tape/StylusPause.h"
#include "windowing/KSpinFieldNativeControl.h"
#include "windowing/KTimer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t kSecondsId = 20;
// The field has two decimals: a thousandth of a millisecond is far below
// anything it can show, and above the error of the product.
constexpr double kFractionSlack = 1e-6;

} // namespace

K_DEFINE_CLASS(PauseDialog, ElementDialog)

PauseDialog::PauseDialog()
{
    setTitle(uiText("Pause"));
    setBounds(KGraphicRectangle(160, 160, kWidth, kHeight));
}

PauseDialog::~PauseDialog() = default;

bool PauseDialog::takesElement(const TapeObject& candidate) const
{
    return dynamic_cast<const StylusPause*>(&candidate) != nullptr;
}

void PauseDialog::makeControls()
{
    const auto& pause = static_cast<const StylusPause&>(*getElement());
    addLabel(uiText("Pause (Seconds)"), 16, 22, 150);
    secondsField
        = kAdopt(new KSpinFieldNativeControl(kSecondsId, KWideRectangle(170, 18, 120, 24), 0.0, kMaxSeconds, 0.0));
    secondsField->setDecimals(2);
    secondsField->setStep(0.1);
    secondsField->setValue(pause.getDuration() / 1000.0);
    addControl(*secondsField);
}

double PauseDialog::getSeconds() const { return secondsField ? secondsField->getValue() : 0.0; }

void PauseDialog::setSeconds(double seconds)
{
    if (secondsField)
        secondsField->setValue(seconds);
}

int32_t PauseDialog::millisecondsOf(double seconds)
{
    if (!std::isfinite(seconds) || seconds <= 0.0)
        return 0;
    return int32_t(std::trunc(std::min(seconds, kMaxSeconds) * 1000.0 + kFractionSlack));
}

void PauseDialog::applyValues() { static_cast<StylusPause&>(*getElement()).setDuration(millisecondsOf(getSeconds())); }
