#pragma once

#include "kernel/KNamedBag.h"
#include "kernel/KVariable.h"
#include "windowing/KWindow.h"

// A window with standard buttons (OK, Cancel, Apply) in a row at its
// bottom, named parameters that carry its values in and out, and a modal
// run. A dialog is a one-shot object: built, run and released. A control
// action in a dialog reaches its doControlAction; the standard buttons end
// the dialog, other actions go on to the action target.
class KDialog : public KWindow {
    K_DECLARE_CLASS(KDialog)
public:
    enum StandardButton : int32_t { OkButton = 1, CancelButton = 2, ApplyButton = 4 };
    static constexpr int32_t kButtonWidth = 90;
    // The desktop's buttons are taller than the old 20 pixels; a row this
    // high keeps them whole inside the dialog.
    static constexpr int32_t kButtonHeight = 30;

    KDialog();
    ~KDialog() override;

    // Opens with the standard buttons set before (OK and Cancel unless
    // told otherwise).
    void open(OpenMode mode) override;
    virtual void open(OpenMode mode, int32_t standardButtons);
    // Opens the dialog and turns the event loop, never blocking for more
    // than a moment, until the dialog is closed; the windows behind it are
    // disabled meanwhile. Returns the result.
    virtual int32_t runModal(OpenMode mode = Normal);
    KEventReturn doClose(KWindowEvent& event) override;
    // The dialog's face: the desktop's window colour under its controls.
    KEventReturn doPaint(KWindowEvent& event) override;
    KEventReturn doControlAction(KControlActionEvent& event) override;
    // A standard button was pressed: OK and Cancel end the dialog with
    // their id, Apply does nothing here.
    virtual KEventReturn doDialogAction(int32_t buttonId);
    // Stores the result and closes the dialog.
    void endDialog(int32_t value);
    // Lays out the standard buttons from the right: Apply, Cancel, OK.
    virtual void placeButtons();

    void setStandardButtons(int32_t bits) { standardButtons = bits; }
    int32_t getStandardButtons() const { return standardButtons; }
    void setButtonId(int32_t which, int32_t id);
    int32_t getButtonId(int32_t which) const;
    void setButtonText(int32_t which, const KString& text);
    KButtonNativeControl* getStandardButton(int32_t which) const;
    // OK answers Return, Cancel answers Escape.
    KButtonNativeControl* getDefaultButton() const { return getStandardButton(OkButton); }
    KButtonNativeControl* getCancelButton() const { return getStandardButton(CancelButton); }

    // The dialog keeps a copy of the value.
    void setParameter(const KString& name, const KVariable& value);
    bool hasParameter(const KString& name) const;
    KVariable* getParameter(const KString& name) const;
    void setActionTarget(KThing* target) { actionTarget = target; }
    KThing* getActionTarget() const { return actionTarget.get(); }

    int32_t getResult() const { return result; }
    bool isModal() const override { return modal != 0; }
    int32_t getTier() const override { return modal ? ModalTier : NormalTier; }
    bool wasOpenedBefore() const { return openedBefore != 0; }

protected:
    KNativeWindowSetup makeNativeSetup() const override;

private:
    static int32_t slotOf(int32_t which);
    void makeButtons();

    int32_t standardButtons = OkButton | CancelButton;
    int32_t buttonIds[3] = { 1, 2, 4 };
    KString buttonTexts[3];
    KButtonNativeControlPtr buttons[3];
    KNamedBag parameters;
    KThingPtr actionTarget;
    int32_t result = 0;
    uint8_t modal = 0;
    uint8_t openedBefore = 0;
};
