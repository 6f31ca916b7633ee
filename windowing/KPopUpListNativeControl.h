#pragma once

#include "windowing/KChoiceNativeControl.h"

// A button that shows the chosen item and opens the list of the others.
class KPopUpListNativeControl : public KChoiceNativeControl {
    K_DECLARE_CLASS(KPopUpListNativeControl)
public:
    KPopUpListNativeControl();
    KPopUpListNativeControl(int32_t id, const KWideRectangle& bounds, const std::vector<KString>& items = {});
    ~KPopUpListNativeControl() override;

    const char* getKindName() const override { return "popUpList"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
