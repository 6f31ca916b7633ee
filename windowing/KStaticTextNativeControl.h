#pragma once

#include "windowing/KControl.h"

// A text of the native side, wrapped within its rectangle.
class KStaticTextNativeControl : public KControl {
    K_DECLARE_CLASS(KStaticTextNativeControl)
public:
    KStaticTextNativeControl();
    KStaticTextNativeControl(const KString& text, const KWideRectangle& bounds);
    ~KStaticTextNativeControl() override;

    const char* getKindName() const override { return "staticText"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
