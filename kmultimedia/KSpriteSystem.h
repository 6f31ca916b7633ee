#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KImage.h"
#include "kernel/KBag.h"
#include "kmultimedia/KAnimationSystem.h"
#include "kmultimedia/KMultimediaForward.h"

#include <utility>
#include <vector>

class KMaskedFrame;
struct KPixelBuffer;

// Composes the sprites of its layers over a background into an offscreen
// buffer and brings the buffer to a device, frame by frame.
//
// Mode 0 (Full) composes everything every frame and transfers the whole
// buffer, stretched into `destinationRect`. The incremental modes keep the
// buffer between frames and repaint only the dirty sprites: a sprite that
// changed, and transitively every sprite overlapping one, is wiped back to
// the background at its drawn place and drawn again, bottom layer first.
// Mode 1 (Incremental) then transfers the whole buffer; mode 2
// (Rectangles) transfers only the changed rectangles, unscaled, displaced
// by the origin of `destinationRect`.
//
// The work is bounded by the dirty areas (the old and new places of the
// dirty sprites, overlapping ones merged where that saves pixels): each is
// restored by row copies and recomposed with only the sprites crossing it,
// clipped to it, so a frame costs what moved.
//
// Whoever paints on the background calls `invalidate` with the changed
// rectangle; the area reaches the device with the next frame.
class KSpriteSystem : public KAnimationSystem {
    K_DECLARE_CLASS(KSpriteSystem)
public:
    enum class UpdateMode : int32_t { Full = 0, Incremental = 1, Rectangles = 2 };
    using enum UpdateMode;

    KSpriteSystem();
    ~KSpriteSystem() override;

    // Links the image itself as the background.
    virtual void setBackgroundImage(KImage& image);
    virtual void clearBackgroundImage();
    // Links the target; an empty destination or buffer rectangle takes the
    // device's size. Makes new buffers, which drops the background.
    virtual void attachDevice(KGraphicDevice& device);
    virtual void detachDevice();
    // A full composition and transfer.
    virtual void redrawAll();

    // Copies each sprite's current place to its drawn place in the
    // incremental modes, then steps the objects.
    void step(float seconds) override;
    // Mode 0 redraws all; the others run the incremental frame.
    void drawFrame() override;

    void addLayer(KSpriteLayer& layer);
    void moveLayerToTop(KSpriteLayer& layer);
    bool removeLayer(KSpriteLayer& layer);
    void removeAllLayers();

    void setBufferRect(const KGraphicRectangle& rectangle);
    void setDestinationRect(const KGraphicRectangle& rectangle);
    void createBuffers();
    void createBackground();
    // A new background with the image stretched over it.
    void setBackground(KImage& image);
    // Draws the image stretched over the background and invalidates it all.
    void updateBackground(KImage& image);
    void setUpdateMode(UpdateMode mode) { updateMode = mode; }
    UpdateMode getUpdateMode() const { return updateMode; }
    // The background changed in the rectangle (buffer terms).
    void invalidate(const KGraphicRectangle& rectangle);
    // The buffer over the device's bounds, or into the rectangle.
    void paintTo(KGraphicDevice& target);
    void paintTo(KGraphicDevice& target, const KGraphicRectangle& rectangle);

    KGraphicRectangle getCurrentRect(KSprite& sprite) const;
    KGraphicRectangle getDrawnRect(KSprite& sprite) const;
    void setCurrentRect(KSprite& sprite, const KGraphicRectangle& rectangle);

    KImage* getBackground() const { return background.get(); }
    KGraphicDevice* getDevice() const { return device.get(); }
    KImage* getOffscreen() const { return offscreen.get(); }
    const KGraphicRectangle& getDestinationRect() const { return destinationRect; }
    const KGraphicRectangle& getBufferRect() const { return bufferRect; }
    KBag& getLayers() { return layers; }
    KSpriteLayer* getLayerAt(int32_t index) const;
    const KBag& getDirtySprites() const { return dirtySprites; }
    const KBag& getRemovalSprites() const { return removalSprites; }
    const KBag& getExtraRects() const { return extraRects; }
    // The areas the last incremental frame recomposed (buffer terms).
    const std::vector<KGraphicRectangle>& getDirtyAreas() const { return dirtyAreas; }

protected:
    // The full composition and its transfer.
    void compose();
    void present();
    // Marks every clean sprite that overlaps the sprite's current or drawn
    // place, and on from there.
    void spreadDirty(KSprite& sprite);

private:
    template<class Visit>
    void forEachSprite(Visit&& visit);
    // The steps of the incremental frame.
    void collectDirtySprites();
    void collectSpritesToDraw();
    void collectDirtyAreas();
    void composeDirtyAreas();
    // The general way: restore, then each crossing sprite's `draw` clipped
    // to the area.
    void composeArea(const KGraphicRectangle& area);
    // The fast way, when every crossing sprite is a prepared frame: a row
    // at a time, background, sprites and (mode 2) the transfer to the
    // device while the row is still in the cache. False when it cannot.
    bool composeAreaByRows(const KGraphicRectangle& area);
    bool collectRowSprites(const KGraphicRectangle& area);
    void restoreRow(uint32_t* row, const KPixelBuffer& under, const KGraphicRectangle& area, int32_t y);
    // The device's pixels when the area (device terms) can be written
    // straight into them.
    bool directTarget(const KWideRectangle& target, KPixelBuffer& pixels);
    void transferExtraRectangles();
    void removeLeavingSprites();
    void finishRemovals(KBag& leaving);
    // Brings back the background, or black without one, in the rectangle
    // of the buffer.
    void restoreBackground(const KGraphicRectangle& rectangle);
    // Copies a rectangle of the buffer unscaled to the device.
    void transferRectangle(const KGraphicRectangle& rectangle);
    void transferWholeBuffer();
    bool canDraw() const { return device && offscreen; }
    KGraphicRectangle bufferBounds() const;

    KImagePtr background;
    KGraphicDevicePtr device;
    KBag layers;
    KBag dirtySprites;
    KBag removalSprites;
    KBag extraRects;
    UpdateMode updateMode = Full;
    KImagePtr offscreen;
    KGraphicRectangle destinationRect;
    KGraphicRectangle bufferRect;
    std::vector<KGraphicRectangle> dirtyAreas;
    struct RowSprite {
        const KMaskedFrame* frame;
        int32_t x;
        int32_t y;
    };
    std::vector<RowSprite> rowSprites;
    // The parts of a row that sprites cover outright, from x to x.
    std::vector<std::pair<int32_t, int32_t>> coverSpans;
};
