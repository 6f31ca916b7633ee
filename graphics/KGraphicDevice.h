#pragma once

#include "graphics/KClipRectangles.h"
#include "graphics/KGraphicDeviceState.h"
#include "graphics/KGraphicPoint.h"
#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KGraphicsForward.h"
#include "graphics/KPixelBuffer.h"
#include "graphics/KPixelOps.h"
#include "graphics/KSpanPainter.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"

#include <vector>

// The one drawing surface of the framework. Windows derive from it and
// every image owns one. It keeps a portable state with a stack, a clip
// region with a stack, and draws through a native device: a cairo surface
// it owns or was given (an image's bitmap, a window's back buffer, a print
// job's context). Without a native side every drawing operation does
// nothing.
//
// Every operation computes its set of pixels without antialiasing, clips
// it, and applies the pen once a pixel: mode 0 paints the foreground, mode
// 2 the background, mode 1 inverts exactly, so that inverting twice
// restores the surface. Frame operations use inside-frame pens: the frame
// is the shape less the shape shrunk by the pen size.
class KGraphicDevice : public KThing {
    K_DECLARE_CLASS(KGraphicDevice)
public:
    KGraphicDevice();
    explicit KGraphicDevice(int32_t owner);
    KGraphicDevice(const KGraphicDevice&) = delete;
    KGraphicDevice& operator=(const KGraphicDevice&) = delete;
    ~KGraphicDevice() override;

    // --- The native side ---------------------------------------------------

    // Takes ownership; the bounds and the clip become the native surface's
    // rectangle at (0, 0), the resolution and depth its own. A null device
    // detaches.
    void attachNativeDevice(KNativeDevice* device);
    void detachNativeDevice();
    KNativeDevice* getNativeDevice() const { return nativeDevice; }
    bool hasNativeDevice() const { return nativeDevice != nullptr; }
    // Whether the pixels can be read and written directly (not so for a
    // print job's context).
    bool hasPixelAccess() const;
    // Direct access to the pixels: begin fills the view (false without
    // access), end reports what changed.
    bool beginPixelAccess(KPixelBuffer& pixels);
    void endPixelAccess(const KWideRectangle& changed);
    // Counts every change of the pixels, so that derived data can tell when
    // it is stale.
    uint32_t getChangeCount() const { return changeCount; }
    // Unique for the run: no two devices ever share it.
    uint64_t getSerial() const { return serial; }

    int32_t getOwner() const { return owner; }
    void setOwner(int32_t value) { owner = value; }
    const KGraphicRectangle& getBounds() const { return bounds; }
    int16_t getDepth() const { return depth; }
    double getResolutionX() const { return resolutionX; }
    double getResolutionY() const { return resolutionY; }
    static int32_t liveDevices();

    // --- State ---------------------------------------------------------------

    const KGraphicDeviceState& getState() const { return state; }
    // A colour that looks the same on the device (equal native value)
    // changes nothing.
    void setForeground(const KColor& colour);
    void setBackground(const KColor& colour);
    const KColor& getForeground() const { return state.foreground; }
    const KColor& getBackground() const { return state.background; }
    void setPenMode(KGraphicDeviceState::PenMode mode);
    KGraphicDeviceState::PenMode getPenMode() const { return state.penMode; }
    void setPenSize(int16_t size);
    int16_t getPenSize() const { return state.penSize; }
    void setFont(KFont& font);
    void clearFont();
    KFont* getFont() const { return state.font.get(); }

    // Pushes a copy of the state (colours, mode, size); restore pops and
    // assigns it, and does nothing on an empty stack.
    void saveState();
    void restoreState();
    int32_t getStateDepth() const { return int32_t(stateStack.size()); }

    // --- Clip ----------------------------------------------------------------

    void saveClip();
    void restoreClip();
    int32_t getClipDepth() const { return int32_t(clipStack.size()); }
    void setClip(const KGraphicRectangle& rectangle);
    void setClip(const KGraphicRegion& region);
    void intersectClip(const KGraphicRectangle& rectangle);
    void intersectClip(const KGraphicRegion& region);
    void uniteClip(const KGraphicRectangle& rectangle);
    void uniteClip(const KGraphicRegion& region);
    const KGraphicRegion& getClip() const { return clipRegion; }
    // Sets the clip to the rectangle and unites the bounds with it.
    void resize(const KGraphicRectangle& rectangle);

    // --- Pixels and lines ----------------------------------------------------

    // Black outside the surface or without a native side.
    KColor getPixel(int16_t x, int16_t y) const;
    KColor getPixel(const KGraphicPoint& p) const;
    // Sets one pixel to the colour (the foreground when none is given),
    // whatever the pen mode; clipped.
    void setPixel(int16_t x, int16_t y, const KColor& colour);
    void setPixel(const KGraphicPoint& p, const KColor& colour);
    void setPixel(int16_t x, int16_t y);
    void setPixel(const KGraphicPoint& p);

    // Lines leave their end point out, so joined lines touch each pixel
    // once; the pen position moves to the end.
    void moveTo(int16_t x, int16_t y);
    void moveTo(const KGraphicPoint& p);
    void lineTo(int16_t x, int16_t y);
    void lineTo(const KGraphicPoint& p);
    void line(const KGraphicPoint& from, const KGraphicPoint& to);
    void line(int16_t x1, int16_t y1, int16_t x2, int16_t y2);
    void lineHorizontal(int16_t x1, int16_t x2, int16_t y);
    void lineVertical(int16_t x, int16_t y1, int16_t y2);
    const KGraphicPoint& getPenPosition() const { return penPosition; }

    // --- Shapes --------------------------------------------------------------

    void frameRectangle(const KGraphicRectangle& r);
    void frameRectangle(const KGraphicRectangle& r, const KColor& colour);
    void fillRectangle(const KGraphicRectangle& r);
    void fillRectangle(const KGraphicRectangle& r, const KColor& colour);
    // Fills in the background colour.
    void eraseRectangle(const KGraphicRectangle& r);
    // Inverts the frame.
    void invertFrame(const KGraphicRectangle& r);
    // Corners are quarters of an oval of radius by radius pixels.
    void frameRoundRectangle(const KGraphicRectangle& r, int16_t radius);
    void fillRoundRectangle(const KGraphicRectangle& r, int16_t radius);
    void frameOval(const KGraphicRectangle& r);
    // A 1 by 1 oval is one pixel, so a brush dab of size 1 leaves a mark.
    void fillOval(const KGraphicRectangle& r);
    // The text in the device's font (the system font when none is set), in
    // the foreground colour, its top left corner at p.
    void drawString(const KString& text, const KGraphicPoint& p);
    // A laid-out text with its top left corner at (x, y), scaled by the
    // factors and clipped; `extent` is the rectangle it may touch, reported
    // as changed.
    void drawTextLayout(const KNativeTextLayout& layout, double x, double y, double scaleX, double scaleY,
                        const KWideRectangle& extent);
    void frameRegion(const KGraphicRegion& region);
    void fillRegion(const KGraphicRegion& region);
    void framePolygon(const std::vector<KGraphicPoint>& points);
    void fillPolygon(const std::vector<KGraphicPoint>& points);
    // The closed path in a one-pixel dash-dot line of the foreground.
    void drawDashedPath(const std::vector<KGraphicPoint>& points);
    // The same over an array of KGraphicPoint objects; empty slots and other
    // objects are passed over.
    void framePolygon(const KArray& points);
    void fillPolygon(const KArray& points);
    void drawDashedPath(const KArray& points);
    // Tiles the rectangle with the object, the tiles aligned on the
    // device's origin, so that neighbouring fills join without a seam.
    void fillWithPattern(const KGraphicRectangle& r, KGraphicObject& tile);
    void drawEdgeEtched(const KGraphicRectangle& r);
    void drawEdgeRaised(const KGraphicRectangle& r);
    void drawEdgeSunken(const KGraphicRectangle& r);
    // A dotted frame that inverts; drawing it twice removes it.
    void drawFocusRectangle(const KGraphicRectangle& r);
    void drawPopupArrow(const KGraphicRectangle& r);

    // --- Copies --------------------------------------------------------------

    // Equal sizes copy exactly; other sizes stretch with a box filter. A
    // copy within one device may overlap itself. Clipped by the target.
    virtual void copyTo(KGraphicDevice& target, const KGraphicRectangle& source, const KGraphicRectangle& destination);
    virtual void copyTo(KGraphicDevice& target, const KGraphicRectangle& destination);
    virtual void copyTo(KGraphicDevice& target, const KGraphicPoint& p);

    // Combines the source area with the target's pixels by a raster
    // operation, stretching first when the sizes differ. Needs pixel access
    // on the target (copies do not).
    void rasterCopyTo(KGraphicDevice& target, const KWideRectangle& source, const KWideRectangle& destination,
                      KPixelOps::RasterOp op);
    // Blends the source area over the target with a constant alpha (255
    // opaque); a premultiplied ARGB32 source blends by its own alpha too.
    void blendTo(KGraphicDevice& target, const KWideRectangle& source, const KWideRectangle& destination,
                 uint8_t alpha);

protected:
    // Called after the pixels in the rectangle changed; a window queues a
    // redraw of it.
    virtual void surfaceChanged(const KWideRectangle& changed);

private:
    template<class Shape>
    void paint(KPenOp op, uint32_t colour, Shape&& shape);
    template<class Shape>
    void paintWithPen(Shape&& shape);
    void paintSpans(KSpanList& spans, bool normalise);
    KPenOp penOp() const;
    uint32_t penColour() const;
    void noteChange(const KWideRectangle& changed);
    void updateClip();
    void drawEdge(const KGraphicRectangle& r, uint32_t outerTopLeft, uint32_t outerBottomRight, uint32_t innerTopLeft,
                  uint32_t innerBottomRight);
    void copyArea(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to);
    template<class Op>
    void combineEqualSize(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to, Op&& op);
    template<class Op>
    void combine(KGraphicDevice& target, const KWideRectangle& from, const KWideRectangle& to, Op&& op);

    KNativeDevice* nativeDevice = nullptr;
    double resolutionX = 0.0;
    double resolutionY = 0.0;
    KGraphicRectangle bounds;
    int16_t depth = 0;
    KGraphicDeviceState state;
    std::vector<KGraphicDeviceStatePtr> stateStack;
    KGraphicRegion clipRegion;
    std::vector<KGraphicRegion> clipStack;
    int32_t owner = 0;

    KClipRectangles clipRects;
    KGraphicPoint penPosition;
    uint32_t changeCount = 0;
    uint64_t serial = 0;
};
