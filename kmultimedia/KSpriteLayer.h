#pragma once

#include "graphics/KGraphicPoint.h"
#include "kernel/KBag.h"
#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KWindowingForward.h"

// A level of the scene: an ordered list of sprites, the bottom one first.
// A layer in a system enters its sprites in the system's object list, so
// that they are stepped; removal through `markForRemoval` is left to the
// system's frames, which wipe the sprite before they drop it.
class KSpriteLayer : public KThing {
    K_DECLARE_CLASS(KSpriteLayer)
public:
    enum class SortMode : int32_t { NoSort = 0, SortByY = 1 };
    using enum SortMode;

    KSpriteLayer();
    KSpriteLayer(const KSpriteLayer&) = delete;
    KSpriteLayer& operator=(const KSpriteLayer&) = delete;
    ~KSpriteLayer() override;

    // A copy takes the sort mode only, never the sprites.
    KThing* deepCopy() const override;

    virtual void setSystem(KSpriteSystem& system);
    virtual void clearSystem();

    void addSprite(KSprite& sprite);
    void removeSprite(KSprite& sprite);
    void removeAllSprites();
    // Asks the system to take the sprite away over its next frames.
    void markForRemoval(KSprite& sprite);
    void bringToFront(KSprite& sprite);
    void bringForward(KSprite& sprite);
    void sendToBack(KSprite& sprite);
    void sendBackward(KSprite& sprite);
    // The topmost sprite whose bounds hold the point, hidden or not.
    bool findSpriteAt(const KGraphicPoint& point, KSpritePtr& result);

    // Orders the sprites by their position's y, ascending; equal ones keep
    // their order.
    void sortByY();

    // The scene's mouse, in page terms; a plain layer takes none.
    virtual KEventReturn doMouseDown(KMouseEvent& event);
    virtual KEventReturn doMouseMoved(KMouseEvent& event);
    virtual KEventReturn doMouseUp(KMouseEvent& event);

    KSpriteSystem* getSystem() const { return system; }
    KBag& getSprites() { return sprites; }
    int32_t getSpriteCount() const { return sprites.getSize(); }
    KSprite* getSpriteAt(int32_t index) const;
    SortMode getSortMode() const { return sortMode; }
    void setSortMode(SortMode mode) { sortMode = mode; }
    const KGraphicPoint& getLayerOrigin() const { return layerOrigin; }
    void setLayerOrigin(const KGraphicPoint& origin) { layerOrigin = origin; }

protected:
    // Not counted: the system holds the layer.
    KSpriteSystem* system = nullptr;
    KBag sprites;
    SortMode sortMode = NoSort;
    KGraphicPoint layerOrigin;

private:
    // Exchanges the sprites at the two places and marks both dirty.
    void swapSprites(int32_t a, int32_t b);
};
