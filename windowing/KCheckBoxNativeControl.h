#pragma once

#include "windowing/KControl.h"

// A check box of the native side with its text beside it. The user's
// toggle is a KControlActionEvent of type Changed.
class KCheckBoxNativeControl : public KControl {
    K_DECLARE_CLASS(KCheckBoxNativeControl)
public:
    KCheckBoxNativeControl();
    KCheckBoxNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds, bool checked = false);
    ~KCheckBoxNativeControl() override;

    void setChecked(bool value);
    bool isChecked() const { return checked; }

    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "checkBox"; }
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    bool checked = false;
};
