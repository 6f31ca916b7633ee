#pragma once

#include "graphics/KColor.h"
#include "windowing/KControl.h"

// A button that shows a colour. A click on a pickable swatch asks for a
// new colour with the colour chooser and, when the user picks another
// one, makes a KControlActionEvent of type Changed; a click on a swatch
// that is not pickable is a Clicked action.
class KColourSwatchNativeControl : public KControl {
    K_DECLARE_CLASS(KColourSwatchNativeControl)
public:
    KColourSwatchNativeControl();
    KColourSwatchNativeControl(int32_t id, const KWideRectangle& bounds, const KColor& colour);
    ~KColourSwatchNativeControl() override;

    void setColour(const KColor& value);
    const KColor& getColour() const { return colour; }
    void setPickable(bool value) { pickable = value; }
    bool isPickable() const { return pickable; }

    // What a click does.
    KEventReturn click();
    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "colourSwatch"; }
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    KColor colour;
    bool pickable = true;
};
