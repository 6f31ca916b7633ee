#include "kmultimedia/KSpriteSystem.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KImage.h"
#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"

K_DEFINE_CLASS(KSpriteSystem, KAnimationSystem)

namespace {

constexpr const char* kSetBackgroundLocation = "KSpriteSystem::setBackground(KImage& Img)";
constexpr const char* kUpdateBackgroundLocation = "KSpriteSystem::updateBackground(KImage& Img)";

void prepareList(KBag& bag)
{
    bag.setGrowSize(KAnimationSystem::kListRoom);
    bag.setMinSize(KAnimationSystem::kListRoom);
}

KSprite* spriteAt(const KBag& bag, int32_t index) { return static_cast<KSprite*>(bag.getAt(index)); }

KGraphicRectangle wholeOf(KImage& image) { return KGraphicRectangle(KGraphicPoint(0, 0), image.getSize()); }

void fillBlack(KGraphicDevice& device, const KGraphicRectangle& rectangle)
{
    device.fillRectangle(rectangle, KColor(KColor::Black));
}

} // namespace

KSpriteSystem::KSpriteSystem()
{
    prepareList(dirtySprites);
    prepareList(removalSprites);
    prepareList(extraRects);
}

KSpriteSystem::~KSpriteSystem()
{
    dirtySprites.clear();
    removalSprites.clear();
    extraRects.clear();
    removeAllLayers();
    offscreen.clear();
    clearBackgroundImage();
    detachDevice();
}

template<class Visit>
void KSpriteSystem::forEachSprite(Visit&& visit)
{
    for (int32_t l = 0; l < layers.getSize(); ++l) {
        KSpriteLayer* layer = getLayerAt(l);
        if (!layer)
            continue;
        for (int32_t s = 0; s < layer->getSpriteCount(); ++s) {
            if (KSprite* sprite = layer->getSpriteAt(s))
                visit(*sprite);
        }
    }
}

KSpriteLayer* KSpriteSystem::getLayerAt(int32_t index) const
{
    if (index < 0 || index >= layers.getSize())
        return nullptr;
    return static_cast<KSpriteLayer*>(layers.getAt(index));
}

KGraphicRectangle KSpriteSystem::bufferBounds() const
{
    return offscreen ? wholeOf(*offscreen) : KGraphicRectangle();
}

// --- Layers ------------------------------------------------------------------

void KSpriteSystem::addLayer(KSpriteLayer& layer)
{
    if (layer.getSystem() || layers.has(layer))
        return;
    layers.add(layer);
    layer.setSystem(*this);
    for (int32_t i = 0; i < layer.getSpriteCount(); ++i)
        addObject(*layer.getSpriteAt(i));
}

void KSpriteSystem::moveLayerToTop(KSpriteLayer& layer)
{
    int32_t index = 0;
    if (!layers.has(layer, &index) || index >= layers.getSize())
        return;
    KSpriteLayerPtr held(layer);
    layers.removeAt(index);
    layers.add(layer);
}

bool KSpriteSystem::removeLayer(KSpriteLayer& layer)
{
    if (!layers.has(layer))
        return false;
    KSpriteLayerPtr held(layer);
    for (int32_t i = 0; i < layer.getSpriteCount(); ++i)
        removeObject(*layer.getSpriteAt(i));
    layers.removeObject(layer);
    layer.clearSystem();
    return true;
}

void KSpriteSystem::removeAllLayers()
{
    for (int32_t l = layers.getSize() - 1; l >= 0; --l) {
        KSpriteLayerPtr layer(getLayerAt(l));
        if (!layer)
            continue;
        for (int32_t i = 0; i < layer->getSpriteCount(); ++i)
            removeObject(*layer->getSpriteAt(i));
        layer->removeAllSprites();
        layers.removeAt(l);
        layer->clearSystem();
    }
}

// --- Device, buffers, background ---------------------------------------------

void KSpriteSystem::attachDevice(KGraphicDevice& target)
{
    detachDevice();
    device = target;
    KGraphicSize size = target.getBounds().getSize();
    if (destinationRect.isEmpty())
        destinationRect.setSize(size);
    if (bufferRect.isEmpty())
        bufferRect.setSize(size);
    createBuffers();
}

void KSpriteSystem::detachDevice()
{
    if (device)
        device.clear();
}

void KSpriteSystem::setBackgroundImage(KImage& image) { background = image; }

void KSpriteSystem::clearBackgroundImage() { background.clear(); }

void KSpriteSystem::setBufferRect(const KGraphicRectangle& rectangle)
{
    bufferRect = rectangle;
    createBuffers();
}

void KSpriteSystem::setDestinationRect(const KGraphicRectangle& rectangle) { destinationRect = rectangle; }

void KSpriteSystem::createBuffers()
{
    offscreen.clear();
    if (!device)
        return;
    offscreen = kAdopt(new KImage(bufferRect.getSize()));
    createBackground();
}

void KSpriteSystem::createBackground()
{
    clearBackgroundImage();
    if (!device) {
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice, kSetBackgroundLocation);
        return;
    }
    background = kAdopt(new KImage(bufferRect.getSize()));
}

void KSpriteSystem::setBackground(KImage& image)
{
    if (!device) {
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice, kSetBackgroundLocation);
        return;
    }
    KImagePtr held(image);
    createBackground();
    if (background)
        image.drawIn(background->getDevice(), wholeOf(*background));
}

void KSpriteSystem::updateBackground(KImage& image)
{
    if (!device || !background) {
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice, kUpdateBackgroundLocation);
        return;
    }
    KGraphicRectangle whole = wholeOf(*background);
    image.drawIn(background->getDevice(), whole);
    invalidate(whole);
}

// --- Full composition --------------------------------------------------------

void KSpriteSystem::redrawAll()
{
    if (!canDraw())
        return;
    compose();
    present();
}

void KSpriteSystem::compose()
{
    if (!canDraw())
        return;
    if (updateMode == Full)
        removalSprites.clear();
    KGraphicDevice& buffer = offscreen->getDevice();
    if (background)
        background->drawIn(buffer, bufferBounds());
    else
        fillBlack(buffer, bufferBounds());
    for (int32_t l = 0; l < layers.getSize(); ++l) {
        KSpriteLayer* layer = getLayerAt(l);
        if (layer && layer->getSortMode() == KSpriteLayer::SortByY)
            layer->sortByY();
    }
    forEachSprite([&](KSprite& sprite) {
        if (sprite.isVisible())
            sprite.draw(buffer);
        if (updateMode == Full) {
            if (sprite.isRemovePending())
                removalSprites.add(sprite);
        } else {
            sprite.setDirty(true);
            sprite.setDrawnRect(sprite.getBounds());
        }
    });
}

void KSpriteSystem::present()
{
    if (updateMode == Rectangles)
        offscreen->drawAt(*device, destinationRect.getOrigin());
    else
        transferWholeBuffer();
    if (updateMode == Full)
        finishRemovals(removalSprites);
}

void KSpriteSystem::transferWholeBuffer() { offscreen->drawIn(*device, destinationRect); }

void KSpriteSystem::finishRemovals(KBag& leaving)
{
    for (int32_t i = 0; i < leaving.getSize(); ++i) {
        KSpritePtr sprite(spriteAt(leaving, i));
        if (sprite && sprite->getLayer())
            sprite->getLayer()->removeSprite(*sprite);
    }
    leaving.clear();
}

// --- Frames ------------------------------------------------------------------

void KSpriteSystem::step(float time)
{
    if (updateMode != Full)
        forEachSprite([](KSprite& sprite) { sprite.setDrawnRect(sprite.getCurrentRect()); });
    KAnimationSystem::step(time);
}

void KSpriteSystem::drawFrame()
{
    if (updateMode == Full) {
        redrawAll();
        return;
    }
    dirtySprites.clear();
    removalSprites.clear();
    collectDirtySprites();
    collectSpritesToDraw();
    if (!canDraw())
        return;
    restoreUnderDirtySprites();
    drawDirtySprites();
    if (updateMode == Incremental)
        transferWholeBuffer();
    else
        transferChangedRectangles();
    removeLeavingSprites();
}

void KSpriteSystem::collectDirtySprites()
{
    forEachSprite([&](KSprite& sprite) {
        sprite.setCurrentRect(sprite.getBounds());
        if (sprite.isDirty() || sprite.getCurrentRect() != sprite.getDrawnRect()) {
            sprite.setDirty(true);
            spreadDirty(sprite);
        }
    });
}

// A sprite that leaves is wiped in one frame (hidden, with its area
// invalidated) and dropped in the next.
void KSpriteSystem::collectSpritesToDraw()
{
    forEachSprite([&](KSprite& sprite) {
        bool wasDirty = sprite.isDirty();
        if (wasDirty)
            dirtySprites.add(sprite);
        if (!sprite.isRemovePending())
            return;
        if (sprite.isVisible()) {
            sprite.hide();
            if (!wasDirty)
                dirtySprites.add(sprite);
            invalidate(sprite.getBounds());
        } else {
            removalSprites.add(sprite);
        }
    });
}

void KSpriteSystem::restoreUnderDirtySprites()
{
    for (int32_t i = 0; i < dirtySprites.getSize(); ++i)
        restoreBackground(spriteAt(dirtySprites, i)->getDrawnRect());
}

void KSpriteSystem::drawDirtySprites()
{
    KGraphicDevice& buffer = offscreen->getDevice();
    for (int32_t i = 0; i < dirtySprites.getSize(); ++i) {
        KSprite* sprite = spriteAt(dirtySprites, i);
        if (sprite->isVisible())
            sprite->draw(buffer);
        sprite->setDirty(false);
    }
}

void KSpriteSystem::transferChangedRectangles()
{
    for (int32_t i = 0; i < dirtySprites.getSize(); ++i) {
        KSprite* sprite = spriteAt(dirtySprites, i);
        const KGraphicRectangle& drawn = sprite->getDrawnRect();
        const KGraphicRectangle& current = sprite->getCurrentRect();
        if (drawn.intersects(current)) {
            KGraphicRectangle both = drawn;
            both.uniteWith(current);
            transferRectangle(both);
        } else {
            transferRectangle(drawn);
            transferRectangle(current);
        }
    }
    for (int32_t i = 0; i < extraRects.getSize(); ++i)
        transferRectangle(*static_cast<KGraphicRectangle*>(extraRects.getAt(i)));
    extraRects.clear();
}

void KSpriteSystem::removeLeavingSprites() { finishRemovals(removalSprites); }

void KSpriteSystem::spreadDirty(KSprite& sprite)
{
    forEachSprite([&](KSprite& other) {
        if (&other == &sprite || other.isDirty())
            return;
        if (other.getCurrentRect().intersects(sprite.getCurrentRect())) {
            other.setDirty(true);
            spreadDirty(other);
        }
        if (other.getCurrentRect().intersects(sprite.getDrawnRect())) {
            other.setDirty(true);
            spreadDirty(other);
        }
    });
}

void KSpriteSystem::restoreBackground(const KGraphicRectangle& rectangle)
{
    KGraphicRectangle area = rectangle;
    area.intersectWith(bufferBounds());
    if (area.isEmpty())
        return;
    if (background)
        background->drawRegion(offscreen->getDevice(), area, area);
    else
        fillBlack(offscreen->getDevice(), area);
}

void KSpriteSystem::transferRectangle(const KGraphicRectangle& rectangle)
{
    KGraphicRectangle area = rectangle;
    area.intersectWith(bufferBounds());
    if (area.isEmpty())
        return;
    KGraphicRectangle target = area;
    target.offset(destinationRect.x, destinationRect.y);
    offscreen->drawRegion(*device, area, target);
}

// --- Invalidation and painting -----------------------------------------------

void KSpriteSystem::invalidate(const KGraphicRectangle& rectangle)
{
    if (updateMode == Full)
        return;
    if (offscreen)
        restoreBackground(rectangle);
    forEachSprite([&](KSprite& sprite) {
        if (!sprite.isVisible())
            return;
        sprite.setCurrentRect(sprite.getBounds());
        if (sprite.getCurrentRect().intersects(rectangle))
            sprite.setDirty(true);
    });
    if (updateMode == Rectangles)
        extraRects.add(*kAdopt(new KGraphicRectangle(rectangle)));
}

void KSpriteSystem::paintTo(KGraphicDevice& target)
{
    if (offscreen)
        offscreen->drawIn(target, target.getBounds());
}

void KSpriteSystem::paintTo(KGraphicDevice& target, const KGraphicRectangle& rectangle)
{
    if (offscreen)
        offscreen->drawIn(target, rectangle);
}

KGraphicRectangle KSpriteSystem::getCurrentRect(KSprite& sprite) const { return sprite.getCurrentRect(); }

KGraphicRectangle KSpriteSystem::getDrawnRect(KSprite& sprite) const { return sprite.getDrawnRect(); }

void KSpriteSystem::setCurrentRect(KSprite& sprite, const KGraphicRectangle& rectangle)
{
    sprite.setCurrentRect(rectangle);
}
