#include "kmultimedia/KSpriteSystem.h"

#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KGraphicRegion.h"
#include "graphics/KImage.h"
#include "graphics/KMaskedFrame.h"
#include "graphics/KPixelOps.h"
#include "graphics/native/KNativeDevice.h"
#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteLayer.h"

#include <algorithm>
#include <cstring>

K_DEFINE_CLASS(KSpriteSystem, KAnimationSystem)

namespace {

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

int64_t areaOf(const KGraphicRectangle& r) { return int64_t(r.width) * r.height; }

// Overlapping areas become one where their bounding box costs no more
// pixels than the two apart; others stay apart (an overlap composed twice
// comes out the same).
void mergeOverlappingAreas(std::vector<KGraphicRectangle>& areas)
{
    bool merged = true;
    while (merged) {
        merged = false;
        for (size_t i = 0; i < areas.size(); ++i) {
            for (size_t j = i + 1; j < areas.size(); ++j) {
                if (!areas[i].intersects(areas[j]))
                    continue;
                KGraphicRectangle both = areas[i];
                both.uniteWith(areas[j]);
                if (areaOf(both) > areaOf(areas[i]) + areaOf(areas[j]))
                    continue;
                areas[i] = both;
                areas.erase(areas.begin() + std::ptrdiff_t(j));
                merged = true;
                --j;
            }
        }
    }
}

} // namespace

KSpriteSystem::KSpriteSystem()
{
    prepareList(dirtySprites);
    prepareList(removalSprites);
    prepareList(extraRects);
    dirtyAreas.reserve(size_t(kListRoom));
    rowSprites.reserve(size_t(kListRoom));
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

KGraphicRectangle KSpriteSystem::bufferBounds() const { return offscreen ? wholeOf(*offscreen) : KGraphicRectangle(); }

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
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice);
        return;
    }
    background = kAdopt(new KImage(bufferRect.getSize()));
}

void KSpriteSystem::setBackground(KImage& image)
{
    if (!device) {
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice);
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
        KErrorHandler::raiseError(KError::SpriteNoTargetDevice);
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
    collectDirtyAreas();
    composeDirtyAreas();
    if (updateMode == Incremental)
        transferWholeBuffer();
    else
        transferExtraRectangles();
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

// The old and the new place of each dirty sprite: one rectangle when they
// meet, two when it jumped.
void KSpriteSystem::collectDirtyAreas()
{
    dirtyAreas.clear();
    KGraphicRectangle bounds = bufferBounds();
    auto add = [&](KGraphicRectangle area) {
        area.intersectWith(bounds);
        if (!area.isEmpty())
            dirtyAreas.push_back(area);
    };
    for (int32_t i = 0; i < dirtySprites.getSize(); ++i) {
        KSprite* sprite = spriteAt(dirtySprites, i);
        const KGraphicRectangle& drawn = sprite->getDrawnRect();
        const KGraphicRectangle& current = sprite->getCurrentRect();
        if (drawn.intersects(current)) {
            KGraphicRectangle both = drawn;
            both.uniteWith(current);
            add(both);
        } else {
            add(drawn);
            add(current);
        }
    }
    mergeOverlappingAreas(dirtyAreas);
}

// In mode 2 each area goes to the device as soon as it is composed; an
// overlap of two areas composed twice comes out the same both times.
void KSpriteSystem::composeDirtyAreas()
{
    for (const KGraphicRectangle& area : dirtyAreas) {
        if (composeAreaByRows(area))
            continue;
        composeArea(area);
        if (updateMode == Rectangles)
            transferRectangle(area);
    }
    for (int32_t i = 0; i < dirtySprites.getSize(); ++i)
        spriteAt(dirtySprites, i)->setDirty(false);
}

// The area from the background up, with every visible sprite that crosses
// it, bottom layer first: dirty or not, whatever lies there is drawn again.
void KSpriteSystem::composeArea(const KGraphicRectangle& area)
{
    restoreBackground(area);
    KGraphicDevice& buffer = offscreen->getDevice();
    forEachSprite([&](KSprite& sprite) {
        if (sprite.isVisible() && sprite.getCurrentRect().intersects(area))
            sprite.drawClipped(buffer, area);
    });
}

bool KSpriteSystem::collectRowSprites(const KGraphicRectangle& area)
{
    rowSprites.clear();
    bool prepared = true;
    forEachSprite([&](KSprite& sprite) {
        if (!prepared || !sprite.isVisible() || !sprite.getCurrentRect().intersects(area))
            return;
        const KMaskedFrame* frame = sprite.getRowFrame();
        if (!frame) {
            prepared = false;
            return;
        }
        rowSprites.push_back(RowSprite { frame, sprite.getCurrentRect().x, sprite.getCurrentRect().y });
    });
    return prepared;
}

bool KSpriteSystem::directTarget(const KWideRectangle& target, KPixelBuffer& pixels)
{
    if (device.get() == &offscreen->getDevice() || !device->hasPixelAccess()
        || device->getNativeDevice()->getFormat() != KNativeDevice::Format::Rgb24)
        return false;
    const KGraphicRegion& clip = device->getClip();
    KWideRectangle reachable = clip.getBounds();
    if (!clip.isRectangle(reachable))
        return false;
    reachable.intersectWith(device->getBounds().toWide());
    KWideRectangle inside = target;
    inside.intersectWith(reachable);
    if (inside != target || !device->beginPixelAccess(pixels))
        return false;
    return target.getRight() <= pixels.width && target.getBottom() <= pixels.height;
}

bool KSpriteSystem::composeAreaByRows(const KGraphicRectangle& area)
{
    KPixelBuffer buffer, under, screen;
    if (!collectRowSprites(area) || !offscreen->getDevice().beginPixelAccess(buffer))
        return false;
    if (background
        && (!background->getDevice().beginPixelAccess(under) || area.getRight() > under.width
            || area.getBottom() > under.height))
        return false;
    KWideRectangle target = area.toWide();
    target.offset(destinationRect.x, destinationRect.y);
    bool direct = updateMode == Rectangles && directTarget(target, screen);
    const int32_t width = area.width;
    const size_t rowBytes = size_t(width) * sizeof(uint32_t);
    for (int32_t y = area.y; y < area.getBottom(); ++y) {
        bool more = y + 1 < area.getBottom();
        uint32_t* row = buffer.row(y);
        if (more)
            KPixelOps::prefetchRowForWriting(row + buffer.stride + area.x, width);
        restoreRow(row, under, area, y);
        for (const RowSprite& sprite : rowSprites) {
            int32_t frameRow = y - sprite.y;
            if (frameRow >= 0 && frameRow < sprite.frame->getHeight())
                sprite.frame->drawRow(row, frameRow, sprite.x, area.x - sprite.x, area.getRight() - sprite.x);
        }
        if (direct) {
            uint32_t* out = screen.at(target.x, target.y + (y - area.y));
            if (more)
                KPixelOps::prefetchRowForWriting(out + screen.stride, width);
            std::memcpy(out, row + area.x, rowBytes);
        }
    }
    offscreen->getDevice().endPixelAccess(area.toWide());
    if (direct)
        device->endPixelAccess(target);
    else if (updateMode == Rectangles)
        transferRectangle(area);
    return true;
}

// The background of one row of the area, where no sprite covers it
// outright: a covering run replaces whatever lies below, so the background
// under it would be written only to be overwritten.
void KSpriteSystem::restoreRow(uint32_t* row, const KPixelBuffer& under, const KGraphicRectangle& area, int32_t y)
{
    coverSpans.clear();
    for (const RowSprite& sprite : rowSprites) {
        int32_t frameRow = y - sprite.y;
        if (frameRow < 0 || frameRow >= sprite.frame->getHeight())
            continue;
        for (const KMaskedFrame::Run* run = sprite.frame->rowBegin(frameRow); run != sprite.frame->rowEnd(frameRow);
             ++run) {
            if (run->kind != KMaskedFrame::RunKind::Cover)
                continue;
            int32_t start = std::max<int32_t>(area.x, sprite.x + run->x);
            int32_t end = std::min<int32_t>(area.getRight(), sprite.x + run->x + run->length);
            if (start < end)
                coverSpans.emplace_back(start, end);
        }
    }
    std::sort(coverSpans.begin(), coverSpans.end());
    auto fill = [&](int32_t from, int32_t to) {
        if (from >= to)
            return;
        if (under.data)
            std::memcpy(row + from, under.at(from, y), size_t(to - from) * sizeof(uint32_t));
        else
            KPixelOps::fillRun(row + from, to - from, 0);
    };
    int32_t position = area.x;
    for (const auto& [start, end] : coverSpans) {
        fill(position, start);
        position = std::max(position, end);
    }
    fill(position, area.getRight());
    if (under.data && y + 1 < area.getBottom())
        KPixelOps::prefetchRow(under.at(area.x, y + 1), area.width);
}

void KSpriteSystem::transferExtraRectangles()
{
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
