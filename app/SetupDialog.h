#pragma once

#include "kernel/KThingPtr.h"
#include "tape/TapeForward.h"
#include "windowing/KDialog.h"

#include <array>

class KCheckBoxNativeControl;
class KSliderNativeControl;

// "Animation Setup": how the story plays, as the tape keeps it. Three
// choices ("Looping Animation", "Hide Menu Bar", "Hide Tools", the last two
// while playing) and the speed: the slider's value v, 1 (slow) to 50
// (fast), is a play interval of 51 - v milliseconds a tick. The values
// reach the tape only at OK; Cancel leaves it exactly as it was.
class SetupDialog : public KDialog {
    K_DECLARE_CLASS(SetupDialog)
public:
    enum Option : int32_t { Looping = 0, HideMenuBar, HideTools, OptionCount };
    static constexpr int32_t kWidth = 360;
    static constexpr int32_t kHeight = 200;
    static constexpr int32_t kSlowest = 1;
    static constexpr int32_t kFastest = 50;

    SetupDialog();
    ~SetupDialog() override;

    // Runs the dialog modally on the tape; true when the user pressed OK.
    bool open(Tape& tape);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    bool isChecked(Option option) const;
    void setChecked(Option option, bool on);
    int32_t getSpeed() const;
    void setSpeed(int32_t speed);

    // The slider's value for an interval, within kSlowest .. kFastest.
    static int32_t speedOfInterval(int32_t milliseconds);
    // The interval for the slider's value. A slider left where it was gives
    // back the interval it was given, so that an interval the slider
    // cannot show (from an old document) is not changed by an OK.
    static int32_t intervalOfSpeed(int32_t speed, int32_t was);
    // The tape's flag bit of each choice.
    static int32_t flagOf(Option option);

private:
    void apply();

    TapePtr tape;
    std::array<bool, OptionCount> checked {};
    int32_t speed = kFastest;
    std::array<KPtr<KCheckBoxNativeControl>, OptionCount> boxes;
    KPtr<KSliderNativeControl> speedSlider;
};
