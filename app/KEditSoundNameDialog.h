#pragma once

#include "kernel/KString.h"
#include "windowing/KDialog.h"

class KEntryNativeControl;

// Asks the name of a new sound file under "Name:". A name that no file
// system of a memory stick could hold is refused with a message and the
// dialog stays open; on OK the parameter "NewValue" holds the name as
// typed (the caller fits it and adds the extension).
class KEditSoundNameDialog : public KDialog {
    K_DECLARE_CLASS(KEditSoundNameDialog)
public:
    static constexpr int32_t kWidth = 320;
    static constexpr int32_t kHeight = 110;
    static constexpr const char* kResultParameter = "NewValue";

    KEditSoundNameDialog();
    ~KEditSoundNameDialog() override;

    void setName(const KString& name);
    KString getName() const;
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    void close() override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    // Whether the name may become a sound file's name.
    static bool isAcceptable(const KString& name);
    // Runs the dialog modally on `name`; false when the user cancelled.
    static bool ask(KString& name);

private:
    KString name;
    KPtr<KEntryNativeControl> nameField;
};
