#pragma once

#include "kernel/KString.h"
#include "windowing/KDialog.h"

#include <vector>

class KPopUpListNativeControl;

// Offers the sound highlight files of a folder in a pop-up list, titled
// "Load SHI File"; on OK the parameter "File Name" holds the chosen name.
class KSoundHiliteLoadDialog : public KDialog {
    K_DECLARE_CLASS(KSoundHiliteLoadDialog)
public:
    static constexpr int32_t kWidth = 320;
    static constexpr int32_t kHeight = 100;

    KSoundHiliteLoadDialog();
    ~KSoundHiliteLoadDialog() override;

    void prepare(const std::vector<KString>& names);
    using KDialog::open;
    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doDialogAction(int32_t buttonId) override;

    int32_t getSelected() const;
    void setSelected(int32_t index);
    KString getChosenName() const;

    // Runs the dialog; false when cancelled.
    static bool choose(const std::vector<KString>& names, KString& chosen);

private:
    std::vector<KString> fileNames;
    int32_t selected = 0;
    KPtr<KPopUpListNativeControl> fileList;
};
