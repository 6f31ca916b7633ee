#pragma once

#include "app/AppForward.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "windowing/KDialog.h"

class KEntryNativeControl;
class KPopUpListNativeControl;
class KSpinFieldNativeControl;

// "Edit Parameters": a movement's name, the speed of its frames and the
// way they play (once, repeated, forward and back). A name another
// movement of the actor has, or an empty one, is refused with the dialog
// open, since a story finds a movement by its name.
class EditSequenceParametersDialog : public KDialog {
    K_DECLARE_CLASS(EditSequenceParametersDialog)
public:
    static constexpr int32_t kWidth = 400;
    static constexpr int32_t kHeight = 190;
    // The frames change every speed x speed milliseconds: 1 is a frame a
    // millisecond, 40 more than a second and a half.
    static constexpr int32_t kMinimumSpeed = 1;
    static constexpr int32_t kMaximumSpeed = 40;
    static constexpr int32_t kPlayTypeCount = 7;

    EditSequenceParametersDialog();
    ~EditSequenceParametersDialog() override;

    // Runs modally on the actor's movement; true when OK changed it.
    static bool edit(Actor& actor, ActorSequence& movement);

    void prepare(Actor& actor, ActorSequence& movement);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

private:
    KString refusal(const KString& name) const;

    ActorPtr actor;
    ActorSequencePtr movement;
    bool changed = false;
    KPtr<KEntryNativeControl> nameField;
    KPtr<KSpinFieldNativeControl> speedField;
    KPtr<KPopUpListNativeControl> playTypeList;
};
