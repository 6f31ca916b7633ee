#pragma once

#include "graphics/KGraphicRectangle.h"
#include "graphics/KGraphicSize.h"
#include "kernel/KBag.h"
#include "kernel/KFlagSet.h"
#include "kmultimedia/KAnimationObject.h"
#include "kmultimedia/KMultimediaForward.h"

#include <memory>
#include <vector>

class KMaskedFrame;

// A moving picture of the scene: a list of frames, one of which is shown
// at the object's position, scaled by its scale, with its origin on the
// position. The sprite system composes it over the background; `drawnRect`
// is where the last frame put it and `currentRect` where it stands now, and
// the two bound what an incremental frame repaints.
class KSprite : public KAnimationObject {
    K_DECLARE_CLASS(KSprite)
public:
    enum SpriteFlag : int32_t {
        RemovePending = 1,
        Dirty = 2,
    };

    KSprite();
    // A copy shares no layer; its frames are copies of the frames.
    KSprite(const KSprite& other);
    KSprite& operator=(const KSprite&) = delete;
    ~KSprite() override;

    KThing* deepCopy() const override;

    virtual void setLayer(KSpriteLayer& layer);
    virtual void clearLayer();
    // The rectangle the current frame covers: the position less the scaled
    // origin, the frame's size scaled; empty when no frame is shown.
    virtual KGraphicRectangle getBounds();
    // Draws the current frame into the bounds; visibility is the system's
    // business. An unscaled masked frame goes through its prepared runs.
    virtual void draw(KGraphicDevice& device);
    // The same, only within the rectangle (device terms): `draw` under a
    // narrowed clip, so that sprites drawing their own way are clipped too.
    void drawClipped(KGraphicDevice& device, const KGraphicRectangle& clip);
    // Whether `draw` is this class's own, the frame and nothing else: then
    // the system may compose the sprite a row at a time. True only for
    // plain sprites; a subclass that keeps `draw` may answer true as well.
    virtual bool drawsOnlyItsFrame() const;
    // The current frame prepared for drawing by rows, when the sprite shows
    // it unscaled that way; null otherwise.
    const KMaskedFrame* getRowFrame();
    // The bounds of both intersect.
    bool overlaps(KAnimationObject& other) override;

    // Any index; one out of range shows nothing.
    void setFrame(int32_t index);
    int32_t getFrame() const { return currentFrame; }
    bool hasValidFrame() const;
    void setFrameCookie(int32_t cookie) { frameCookie = cookie; }
    int32_t getFrameCookie() const { return frameCookie; }
    void addFrame(KAlphaImage& image);
    void removeFrame(KAlphaImage& image);
    void insertFrame(KAlphaImage& image, int32_t index);
    // Takes the images of the bag (other things are passed over).
    void setFrames(KBag& images);
    KBag& getFrames() { return frames; }
    KAlphaImage* getFrameImage(int32_t index) const;
    KGraphicSize getFrameSize() const;
    void setFrameAlpha(double transparency);
    void setFrameAlphaMode(int32_t mode);
    // Numbered files: the reference's name is the stem, followed by the
    // frame number from 1, three digits. False when a file failed to load.
    bool loadFrames(const KFileReference& first, int32_t count);
    bool loadFrames(const KFileReference& first, const KFileReference& mask, int32_t count, bool singleMask);

    void bringToFront();
    void bringForward();
    void sendToBack();
    void sendBackward();

    KSpriteLayer* getLayer() const { return layer; }
    const KGraphicRectangle& getDrawnRect() const { return drawnRect; }
    const KGraphicRectangle& getCurrentRect() const { return currentRect; }
    void setDrawnRect(const KGraphicRectangle& r) { drawnRect = r; }
    void setCurrentRect(const KGraphicRectangle& r) { currentRect = r; }
    bool isDirty() const { return spriteFlags.test(Dirty); }
    void setDirty(bool dirty);
    bool isRemovePending() const { return spriteFlags.test(RemovePending); }
    void setRemovePending(bool pending);
    const KFlagSet& getSpriteFlags() const { return spriteFlags; }

protected:
    // Not counted: the layer holds the sprite.
    KSpriteLayer* layer = nullptr;
    KBag frames;
    int32_t frameCookie = 0;
    int32_t currentFrame = 0;
    KGraphicRectangle drawnRect;
    KGraphicRectangle currentRect;
    KFlagSet spriteFlags;

private:
    // Frames are prepared on their first draw, one entry an index; the
    // entries rebuild themselves when their image changed.
    bool drawPrepared(KAlphaImage& frame, KGraphicDevice& device, const KGraphicRectangle& bounds);
    KMaskedFrame* prepareFrame(KAlphaImage& frame, const KGraphicRectangle& bounds);
    void forgetPreparedFrames();

    std::vector<std::unique_ptr<KMaskedFrame>> preparedFrames;
};
