#pragma once

#include "app/ElementDialog.h"

class KSpinFieldNativeControl;

// "Pause": the time a pause holds the story, in seconds with two
// decimals, from 0 to an hour.
class PauseDialog : public ElementDialog {
    K_DECLARE_CLASS(PauseDialog)
public:
    static constexpr int32_t kWidth = 320;
    static constexpr int32_t kHeight = 130;
    static constexpr double kMaxSeconds = 3600.0;

    PauseDialog();
    ~PauseDialog() override;

    double getSeconds() const;
    void setSeconds(double seconds);
    // The field's seconds as the element's milliseconds: the whole
    // milliseconds below the value (a value the field shows exactly is not
    // lost to the binary fraction under it).
    static int32_t millisecondsOf(double seconds);

protected:
    const char* elementClassName() const override { return "StylusPause"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    void applyValues() override;

private:
    KPtr<KSpinFieldNativeControl> secondsField;
};
