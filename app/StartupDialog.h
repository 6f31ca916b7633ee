#pragma once

#include "windowing/KDialog.h"
#include "windowing/KWindowingForward.h"

class KRadioGroupNativeControl;

// The first question of a run without a document: start a new project or
// open an existing one ("OK"), or leave ("Exit"). It asks again when
// opening was cancelled and nothing is open.
class StartupDialog : public KDialog {
    K_DECLARE_CLASS(StartupDialog)
public:
    enum Choice : int32_t { NewProject = 0, OpenProject = 1, Exit = 2 };
    static constexpr int32_t kWidth = 450;
    static constexpr int32_t kHeight = 200;

    StartupDialog();
    ~StartupDialog() override;

    void open(OpenMode mode, int32_t standardButtons) override;
    KEventReturn doKeyDown(KKeyEvent& event) override;

    // The radio choice, 0 or 1.
    int32_t getSelection() const;
    void setSelection(int32_t selection);

    // Runs the dialog and what its answer asks for.
    static void run();
    // A document arrived from elsewhere: the open dialog goes.
    static void closeOpen();
    static StartupDialog* current();

private:
    void placeOverMainWindow();
    KPtr<KRadioGroupNativeControl> choices;
};
