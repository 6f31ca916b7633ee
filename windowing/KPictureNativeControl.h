#pragma once

#include "graphics/KGraphicsForward.h"
#include "windowing/KControl.h"

// A picture shown centred in the control's rectangle, cut where it is
// larger. A click on it is a KControlActionEvent of type Clicked.
class KPictureNativeControl : public KControl {
    K_DECLARE_CLASS(KPictureNativeControl)
public:
    KPictureNativeControl();
    KPictureNativeControl(int32_t id, const KWideRectangle& bounds);
    ~KPictureNativeControl() override;

    // A copy of the image's pixels is shown.
    void setPicture(KImage& image);
    // Pixels that do not fill the size are refused: the picture is cleared.
    void setPicture(const KNativeImageData& pixels);
    void clearPicture();
    const KNativeImageData& getPicture() const { return picture; }
    bool hasPicture() const { return picture.width > 0 && picture.height > 0; }

    KEventReturn doNativeEvent(KNativeEvent& event) override;
    const char* getKindName() const override { return "picture"; }
    void describe(KJsonWriter& out) const override;

protected:
    bool describeNative(KNativeControlSetup& setup) const override;

private:
    void pictureChanged();

    KNativeImageData picture;
};
