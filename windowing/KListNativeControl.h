#pragma once

#include "windowing/KChoiceNativeControl.h"

// A scrolling list of items, one chosen at most. A double click or Return
// on an item is a KControlActionEvent of type Activated after the choice.
class KListNativeControl : public KChoiceNativeControl {
    K_DECLARE_CLASS(KListNativeControl)
public:
    KListNativeControl();
    KListNativeControl(int32_t id, const KWideRectangle& bounds, const std::vector<KString>& items = {});
    ~KListNativeControl() override;

    const char* getKindName() const override { return "list"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
