#pragma once

#include "windowing/KEntryNativeControl.h"

// A text field of several lines that wraps at its width and scrolls.
// Lines end with a line feed. The limit counts the line feeds too.
class KMultiLineTextNativeControl : public KEntryNativeControl {
    K_DECLARE_CLASS(KMultiLineTextNativeControl)
public:
    KMultiLineTextNativeControl();
    KMultiLineTextNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds, int32_t limit = 0);
    ~KMultiLineTextNativeControl() override;

    const char* getKindName() const override { return "multiLineText"; }

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
};
