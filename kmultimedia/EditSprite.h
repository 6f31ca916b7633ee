#pragma once

#include "graphics/KGraphicObject.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSprite.h"
#include "windowing/KWindowingForward.h"

// The frame with handles by which an object placed on the page is moved
// and resized. It draws the object inside `rectangle`, a frame around it
// and the handles, and follows a press on a handle (or inside) through the
// drag to the release. The object keeps touching `limits` when moved, and
// its size stays within the minimum and (if set) maximum size; Shift at the
// press keeps the ratio of width to height.
class EditSprite : public KSprite {
    K_DECLARE_CLASS(EditSprite)
public:
    // Codes of the hit test; NoHandle is -1.
    enum Handle : int16_t {
        NoHandle = -1,
        Inside = 0,
        Border = 1,
        TopLeft = 2,
        BottomLeft = 3,
        Left = 4,
        Top = 5,
        TopRight = 6,
        BottomRight = 7,
        Right = 8,
        Bottom = 9,
    };
    static constexpr int16_t kBarWidth = 30;
    static constexpr int16_t kBarHeight = 12;
    // How far outside the rectangle a press still grabs the border.
    static constexpr int16_t kBorderReach = 6;

    EditSprite();
    EditSprite(const EditSprite&) = delete;
    EditSprite& operator=(const EditSprite&) = delete;
    ~EditSprite() override;

    // The rectangle inflated by the handle inset, raised to hold the bar.
    KGraphicRectangle getBounds() override;
    void draw(KGraphicDevice& device) override;
    virtual void setGraphicObject(KGraphicObject& object);
    virtual void clearGraphicObject();
    virtual void setTextControl(KControl& control);
    virtual void clearTextControl();
    // The handle code at the point, in page terms.
    virtual int16_t hitTest(const KGraphicPoint& point);
    // Whether a press at the point belongs to the frame.
    bool hits(const KGraphicPoint& point);
    // 4 when the press grabbed the frame (capture), else 0.
    virtual KEventReturn mouseDown(KMouseEvent& event);
    virtual KEventReturn mouseDragged(KMouseEvent& event);
    virtual KEventReturn mouseUp(KMouseEvent& event);

    // The drag without an event: the point is in page terms.
    KEventReturn press(const KGraphicPoint& point, bool shift);
    void drag(const KGraphicPoint& point);
    void release();

    const KGraphicRectangle& getRectangle() const { return rectangle; }
    void setRectangle(const KGraphicRectangle& r);
    const KGraphicSize& getMaximumSize() const { return maximumSize; }
    bool hasMaximum() const { return hasMaximumSize != 0; }
    void setMaximumSize(const KGraphicSize& size);
    void clearMaximumSize() { hasMaximumSize = 0; }
    const KGraphicSize& getMinimumSize() const { return minimumSize; }
    void setMinimumSize(const KGraphicSize& size) { minimumSize = size; }
    const KGraphicRectangle& getLimits() const { return limits; }
    void setLimits(const KGraphicRectangle& r) { limits = r; }
    void setHandleInset(int16_t inset) { handleInset = inset; }
    int16_t getHandleInset() const { return handleInset; }
    void setHandleSize(int16_t size) { handleSize = size; }
    int16_t getHandleSize() const { return handleSize; }
    void setGridStep(int16_t step) { gridStep = step; }
    int16_t getGridStep() const { return gridStep; }
    void setAllowShiftMove(bool allow) { allowShiftMove = allow ? 1 : 0; }
    bool getAllowShiftMove() const { return allowShiftMove != 0; }
    void setShowBar(bool show) { showBar = show ? 1 : 0; }
    void setShowSideHandles(bool show) { showSideHandles = show ? 1 : 0; }
    int16_t getGrabbedHandle() const { return grabbedHandle; }
    bool isKeepingAspect() const { return keepAspect != 0; }
    float getAspectRatio() const { return aspectRatio; }
    KGraphicObject* getGraphicObject() const { return graphicObject.get(); }
    KControl* getTextControl() const;

private:
    struct Extent {
        int32_t left;
        int32_t top;
        int32_t width;
        int32_t height;
    };
    // The frame the handles stand on.
    KGraphicRectangle handleFrame() const;
    // The places of the handles, in the order of the hit test.
    bool topHandle(KGraphicRectangle& place) const;
    KGraphicRectangle square(int32_t x, int32_t y) const;
    int16_t handleAt(const KGraphicPoint& point) const;
    void drawFrame(KGraphicDevice& device);
    void drawObject(KGraphicDevice& device);
    void drawHandles(KGraphicDevice& device);
    // The drag's steps.
    Extent moved(int32_t dx, int32_t dy) const;
    Extent resized(int32_t dx, int32_t dy) const;
    void fitSizeLimits(float& minW, float& minH, float& maxW, float& maxH) const;
    void snapToGrid(Extent& extent) const;
    // The system's origin on its device, and its clock.
    KGraphicPoint systemOrigin() const;
    KSpriteSystem* spriteSystem() const;
    void placeTextControl();

    KGraphicObjectPtr graphicObject;
    KControlPtr textControl;
    KGraphicSize maximumSize { 320, 240 };
    int8_t hasMaximumSize = 0;
    KGraphicSize minimumSize { 31, 1 };
    KGraphicRectangle pressRectangle;
    KGraphicRectangle rectangle { 10, 10, 100, 100 };
    int16_t grabbedHandle = NoHandle;
    int16_t handleInset = 10;
    int16_t handleSize = 10;
    int8_t showBar = 1;
    int8_t showSideHandles = 1;
    int16_t gridStep = 1;
    int8_t keepAspect = 0;
    int8_t allowShiftMove = 1;
    float aspectRatio = 0.0f;
    KGraphicPoint pressPoint;
    KGraphicRectangle limits { 0, 0, 640, 480 };
};
