#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSpriteLayer.h"

// The layer that holds the one edit frame of the scene and shows or hides
// it. The mouse reaches the frame only while the layer is shown.
class EditSpriteLayer : public KSpriteLayer {
    K_DECLARE_CLASS(EditSpriteLayer)
public:
    // Makes the frame, hidden, and holds it.
    EditSpriteLayer();
    ~EditSpriteLayer() override;

    void show();
    void hide();
    void setShown(bool shown);
    bool isShown() const { return shown != 0; }
    KGraphicRectangle getRectangle() const;
    void setRectangle(const KGraphicRectangle& rectangle);
    void setMaximumSize(const KGraphicSize& size);
    void clearMaximumSize();
    void setMinimumSize(const KGraphicSize& size);
    void setAllowShiftMove(bool allow);
    bool getAllowShiftMove() const;

    KEventReturn doMouseDown(KMouseEvent& event) override;
    KEventReturn doMouseMoved(KMouseEvent& event) override;
    KEventReturn doMouseUp(KMouseEvent& event) override;

    EditSprite& getEditSprite() const;

private:
    int8_t shown = 0;
    EditSpritePtr editSprite;
};
