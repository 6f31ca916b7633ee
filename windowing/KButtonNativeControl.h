#pragma once

#include "windowing/KControl.h"

// A push button of the native side. A click is a KControlActionEvent of
// type Clicked with the button as its source.
class KButtonNativeControl : public KControl {
    K_DECLARE_CLASS(KButtonNativeControl)
public:
    enum ActionType : int32_t { Clicked = 1 };

    KButtonNativeControl();
    KButtonNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds);
    ~KButtonNativeControl() override;

    // The default button of a dialog answers Return.
    void setDefault(bool value) { isDefaultButton = value; }
    bool isDefault() const { return isDefaultButton; }

    // What a click does: the action, processed at once.
    KEventReturn click();
    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "button"; }
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    bool isDefaultButton = false;
};
