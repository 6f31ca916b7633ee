#pragma once

#include "windowing/KChoiceNativeControl.h"

// A column of radio buttons, one per item, within the control's
// rectangle. Once it has items one of them is always chosen: the first
// unless told otherwise.
class KRadioGroupNativeControl : public KChoiceNativeControl {
    K_DECLARE_CLASS(KRadioGroupNativeControl)
public:
    KRadioGroupNativeControl();
    KRadioGroupNativeControl(int32_t id, const KWideRectangle& bounds, const std::vector<KString>& items = {});
    ~KRadioGroupNativeControl() override;

    const char* getKindName() const override { return "radioGroup"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
    int32_t normalise(int32_t index) const override;
};
