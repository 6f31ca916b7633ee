#pragma once

#include "app/ElementDialog.h"

#include <array>

class KCheckBoxNativeControl;

// "Wait": what a wait waits for (sounds, speech, the user), whether it
// blinks its marks, and what it stops when it ends. At least one thing to
// wait for must be checked; the other three flags do not count.
class WaitObjectDialog : public ElementDialog {
    K_DECLARE_CLASS(WaitObjectDialog)
public:
    static constexpr int32_t kWidth = 300;
    static constexpr int32_t kHeight = 250;
    // The flags in the order of their boxes.
    enum Flag : int32_t {
        WaitSounds = 0,
        WaitSpeech = 1,
        WaitUser = 2,
        VisualWarning = 3,
        StopSounds = 4,
        StopSpeech = 5,
        FlagCount = 6,
    };

    WaitObjectDialog();
    ~WaitObjectDialog() override;

    bool isChecked(Flag flag) const;
    void setChecked(Flag flag, bool on);

protected:
    const char* elementClassName() const override { return "WaitObject"; }
    bool takesElement(const TapeObject& candidate) const override;
    void makeControls() override;
    KString refusal() const override;
    void applyValues() override;

private:
    std::array<KPtr<KCheckBoxNativeControl>, FlagCount> boxes;
};
