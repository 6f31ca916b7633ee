#pragma once

#include "windowing/KControl.h"

// A one-line text field of the native side. It holds at most `limit`
// characters (0 for no limit): a longer text is cut. Each change the user
// makes is a KControlActionEvent of type Changed.
class KEntryNativeControl : public KControl {
    K_DECLARE_CLASS(KEntryNativeControl)
public:
    KEntryNativeControl();
    KEntryNativeControl(int32_t id, const KString& text, const KWideRectangle& bounds, int32_t limit = 0);
    ~KEntryNativeControl() override;

    void setText(const KString& text) override;
    // A negative limit counts as none; the text is cut to a new limit.
    void setLimit(int32_t characters);
    int32_t getLimit() const { return limit; }

    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "entry"; }
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;
    KString cut(const KString& text) const;

private:
    int32_t limit = 0;
};
