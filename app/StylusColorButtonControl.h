#pragma once

#include "graphics/KColor.h"
#include "windowing/KImageControl.h"

// One of the tool palette's 16 colour buttons: a rounded 32 by 32 picture
// filled with its colour. The colour is what the picture shows at its
// centre, so a button and a stroke painted with it always agree, 8 bits a
// channel. The selected button wears a frame.
class StylusColorButtonControl : public KImageControl {
    K_DECLARE_CLASS(StylusColorButtonControl)
public:
    static constexpr int16_t kSide = 32;
    // Where the colour is read.
    static constexpr int16_t kSample = 16;
    static constexpr int16_t kFrameWidth = 2;

    StylusColorButtonControl();
    StylusColorButtonControl(int32_t id, const KWideRectangle& bounds);
    ~StylusColorButtonControl() override;

    // Rebuilds the picture in the colour.
    void setColor(const KColor& colour);
    // The picture's pixel at the centre.
    KColor getColor() const;
    bool isSelected() const { return selected; }
    void setSelected(bool value);

    const char* getKindName() const override { return "colourButton"; }
    void describe(KJsonWriter& out) const override;

protected:
    void paintPicture(KWindow& target, const KWideRectangle& bounds) override;

private:
    bool selected = false;
};

using StylusColorButtonControlPtr = KPtr<StylusColorButtonControl>;
