#include "kmultimedia/KSpriteLayer.h"

#include "kernel/KClass.h"
#include "kmultimedia/KSprite.h"
#include "kmultimedia/KSpriteSystem.h"

K_DEFINE_CLASS(KSpriteLayer, KThing)

namespace {

// The comparison of the y sort: it never calls two sprites equal. Empty
// slots go last.
int32_t compareByY(KArray& array, int32_t i, int32_t j)
{
    auto* left = static_cast<KSprite*>(array.getAt(i));
    auto* right = static_cast<KSprite*>(array.getAt(j));
    if (!left)
        return 1;
    if (!right)
        return -1;
    return left->getPosition().y > right->getPosition().y ? 1 : -1;
}

} // namespace

KSpriteLayer::KSpriteLayer() { sprites.setCompareProc(&compareByY); }

KSpriteLayer::~KSpriteLayer()
{
    for (int32_t i = 0; i < sprites.getSize(); ++i) {
        if (KSprite* sprite = getSpriteAt(i); sprite && sprite->getLayer() == this)
            sprite->clearLayer();
    }
    sprites.clear();
}

KThing* KSpriteLayer::deepCopy() const
{
    auto* copy = new KSpriteLayer();
    copy->sortMode = sortMode;
    return copy;
}

void KSpriteLayer::setSystem(KSpriteSystem& newSystem) { system = &newSystem; }

void KSpriteLayer::clearSystem() { system = nullptr; }

KSprite* KSpriteLayer::getSpriteAt(int32_t index) const
{
    if (index < 0 || index >= sprites.getSize())
        return nullptr;
    return static_cast<KSprite*>(sprites.getAt(index));
}

void KSpriteLayer::addSprite(KSprite& sprite)
{
    sprites.add(sprite);
    sprite.setRemovePending(false);
    sprite.setLayer(*this);
    if (system)
        system->addObject(sprite);
}

void KSpriteLayer::removeSprite(KSprite& sprite)
{
    // The lists may hold the last references.
    KSpritePtr held(sprite);
    if (system)
        system->removeObject(sprite);
    sprite.clearLayer();
    sprites.removeObject(sprite);
}

void KSpriteLayer::removeAllSprites()
{
    while (KSprite* sprite = getSpriteAt(0))
        removeSprite(*sprite);
    sprites.clear();
}

void KSpriteLayer::markForRemoval(KSprite& sprite)
{
    if (system && sprites.has(sprite))
        sprite.setRemovePending(true);
}

void KSpriteLayer::swapSprites(int32_t a, int32_t b)
{
    sprites.swap(a, b);
    getSpriteAt(a)->setDirty(true);
    getSpriteAt(b)->setDirty(true);
}

void KSpriteLayer::bringToFront(KSprite& sprite)
{
    int32_t index = 0;
    if (!sprites.has(sprite, &index))
        return;
    for (; index + 1 < sprites.getSize(); ++index)
        swapSprites(index, index + 1);
}

void KSpriteLayer::bringForward(KSprite& sprite)
{
    int32_t index = 0;
    if (sprites.has(sprite, &index) && index + 1 < sprites.getSize())
        swapSprites(index, index + 1);
}

void KSpriteLayer::sendToBack(KSprite& sprite)
{
    int32_t index = 0;
    if (!sprites.has(sprite, &index))
        return;
    for (; index > 0; --index)
        swapSprites(index, index - 1);
}

void KSpriteLayer::sendBackward(KSprite& sprite)
{
    int32_t index = 0;
    if (sprites.has(sprite, &index) && index >= 1)
        swapSprites(index, index - 1);
}

bool KSpriteLayer::findSpriteAt(const KGraphicPoint& point, KSpritePtr& result)
{
    for (int32_t i = sprites.getSize() - 1; i >= 0; --i) {
        KSprite* sprite = getSpriteAt(i);
        if (sprite && sprite->getBounds().contains(point)) {
            result = sprite;
            return true;
        }
    }
    return false;
}

// An insertion sort by the installed comparison: the list is short, mostly
// in order already from the previous frame, and the swaps move no counts.
void KSpriteLayer::sortByY()
{
    int32_t count = sprites.getSize();
    for (int32_t i = 1; i < count; ++i) {
        for (int32_t j = i; j > 0 && compareByY(sprites, j - 1, j) > 0; --j)
            sprites.swap(j - 1, j);
    }
}

KEventReturn KSpriteLayer::doMouseDown(KMouseEvent&) { return 0; }

KEventReturn KSpriteLayer::doMouseMoved(KMouseEvent&) { return 0; }

KEventReturn KSpriteLayer::doMouseUp(KMouseEvent&) { return 0; }
