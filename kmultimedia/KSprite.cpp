#include "kmultimedia/KSprite.h"

#include "graphics/KAlphaImage.h"
#include "graphics/KGraphicClipGuard.h"
#include "graphics/KGraphicDevice.h"
#include "graphics/KMaskedFrame.h"
#include "kernel/KClass.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KSpriteLayer.h"

#include <cstdio>
#include <typeinfo>

K_DEFINE_CLASS(KSprite, KAnimationObject)

namespace {

// Floating point to a 16-bit coordinate, truncated toward zero.
int16_t toCoordinate(float value) { return int16_t(int32_t(value)); }

// The file of frame `number`: the stem's name followed by three digits.
KPath numberedPath(const KPath& stem, int32_t number)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%03d", int(number));
    KPath path(stem);
    path.setName(stem.getName() + digits);
    return path;
}

} // namespace

KSprite::KSprite() = default;

KSprite::KSprite(const KSprite& other)
    : KAnimationObject(other)
    , frameCookie(other.frameCookie)
    , currentFrame(other.currentFrame)
    , drawnRect(other.drawnRect)
    , currentRect(other.currentRect)
    , spriteFlags(other.spriteFlags)
{
    for (int32_t i = 0; i < other.frames.getSize(); ++i) {
        if (KThing* frame = other.frames.getAt(i)) {
            KThing* copy = frame->deepCopy();
            frames.add(copy ? *copy : *frame);
        }
    }
}

KSprite::~KSprite()
{
    forgetPreparedFrames();
    frames.clear();
}

KThing* KSprite::deepCopy() const { return new KSprite(*this); }

void KSprite::setLayer(KSpriteLayer& newLayer) { layer = &newLayer; }

void KSprite::clearLayer() { layer = nullptr; }

KGraphicRectangle KSprite::getBounds()
{
    const KAnimationVector& s = getScale();
    const KAnimationPoint& p = getPosition();
    const KAnimationVector& o = getOrigin();
    KGraphicRectangle bounds;
    KAlphaImage* frame = getFrameImage(currentFrame);
    if (!frame)
        return bounds;
    bounds.x = toCoordinate(p.x - o.x * s.x);
    bounds.y = toCoordinate(p.y - o.y * s.y);
    KGraphicSize size = frame->getSize();
    bounds.width = toCoordinate(float(size.width) * s.x);
    bounds.height = toCoordinate(float(size.height) * s.y);
    return bounds;
}

void KSprite::draw(KGraphicDevice& device)
{
    KGraphicRectangle bounds = getBounds();
    KAlphaImage* frame = getFrameImage(currentFrame);
    if (!frame || drawPrepared(*frame, device, bounds))
        return;
    frame->drawIn(device, bounds);
}

void KSprite::drawClipped(KGraphicDevice& device, const KGraphicRectangle& clip)
{
    KGraphicClipGuard guard(device);
    device.intersectClip(clip);
    draw(device);
}

bool KSprite::drawsOnlyItsFrame() const { return typeid(*this) == typeid(KSprite); }

KMaskedFrame* KSprite::prepareFrame(KAlphaImage& frame, const KGraphicRectangle& bounds)
{
    if (bounds.getSize() != frame.getSize() || bounds.isEmpty())
        return nullptr;
    if (preparedFrames.size() < size_t(frames.getSize()))
        preparedFrames.resize(size_t(frames.getSize()));
    std::unique_ptr<KMaskedFrame>& prepared = preparedFrames[size_t(currentFrame)];
    if (!prepared)
        prepared = std::make_unique<KMaskedFrame>();
    return prepared->prepare(frame) ? prepared.get() : nullptr;
}

bool KSprite::drawPrepared(KAlphaImage& frame, KGraphicDevice& device, const KGraphicRectangle& bounds)
{
    KMaskedFrame* prepared = prepareFrame(frame, bounds);
    return prepared && prepared->drawTo(device, bounds.getOrigin());
}

const KMaskedFrame* KSprite::getRowFrame()
{
    KAlphaImage* frame = getFrameImage(currentFrame);
    if (!frame || !drawsOnlyItsFrame())
        return nullptr;
    return prepareFrame(*frame, getBounds());
}

void KSprite::forgetPreparedFrames() { preparedFrames.clear(); }

bool KSprite::overlaps(KAnimationObject& other)
{
    auto* sprite = dynamic_cast<KSprite*>(&other);
    if (!sprite)
        return false;
    return getBounds().intersects(sprite->getBounds());
}

void KSprite::setDirty(bool dirty)
{
    if (dirty)
        spriteFlags.set(Dirty);
    else
        spriteFlags.clear(Dirty);
}

void KSprite::setRemovePending(bool pending)
{
    if (pending)
        spriteFlags.set(RemovePending);
    else
        spriteFlags.clear(RemovePending);
}

// --- Frames ------------------------------------------------------------------

void KSprite::setFrame(int32_t index)
{
    currentFrame = index;
    setDirty(true);
}

bool KSprite::hasValidFrame() const { return getFrameImage(currentFrame) != nullptr; }

KAlphaImage* KSprite::getFrameImage(int32_t index) const
{
    if (index < 0 || index >= frames.getSize())
        return nullptr;
    return static_cast<KAlphaImage*>(frames.getAt(index));
}

void KSprite::addFrame(KAlphaImage& image) { frames.add(image); }

void KSprite::removeFrame(KAlphaImage& image)
{
    frames.removeObject(image);
    forgetPreparedFrames();
}

void KSprite::insertFrame(KAlphaImage& image, int32_t index)
{
    if (index < 0)
        index = 0;
    if (index > frames.getSize())
        index = frames.getSize();
    frames.insertAt(image, index);
    forgetPreparedFrames();
}

void KSprite::setFrames(KBag& images)
{
    forgetPreparedFrames();
    frames.clear();
    for (int32_t i = 0; i < images.getSize(); ++i) {
        KThing* thing = images.getAt(i);
        if (thing && thing->isEqualOrSubClass(KAlphaImage::classRecord))
            frames.add(*thing);
    }
}

KGraphicSize KSprite::getFrameSize() const
{
    KAlphaImage* first = getFrameImage(0);
    return first ? first->getSize() : KGraphicSize(0, 0);
}

void KSprite::setFrameAlpha(double transparency)
{
    for (int32_t i = 0; i < frames.getSize(); ++i) {
        if (KAlphaImage* frame = getFrameImage(i))
            frame->setTransparency(transparency);
    }
}

void KSprite::setFrameAlphaMode(int32_t mode)
{
    for (int32_t i = 0; i < frames.getSize(); ++i) {
        if (KAlphaImage* frame = getFrameImage(i))
            frame->setBlendMode(mode);
    }
}

bool KSprite::loadFrames(const KFileReference& first, int32_t count)
{
    forgetPreparedFrames();
    frames.clear();
    bool allLoaded = true;
    for (int32_t number = 1; number <= count; ++number) {
        KAlphaImagePtr image(new KAlphaImage());
        allLoaded = image->createFromPath(numberedPath(first.getPath(), number).getNativeText()) && allLoaded;
        frames.add(*image);
    }
    return allLoaded;
}

bool KSprite::loadFrames(const KFileReference& first, const KFileReference& mask, int32_t count, bool singleMask)
{
    forgetPreparedFrames();
    frames.clear();
    bool allLoaded = true;
    for (int32_t number = 1; number <= count; ++number) {
        KPath maskPath = singleMask ? mask.getPath() : numberedPath(mask.getPath(), number);
        KAlphaImagePtr image(new KAlphaImage());
        allLoaded
            = image->createFromPaths(numberedPath(first.getPath(), number).getNativeText(), maskPath.getNativeText())
              && allLoaded;
        frames.add(*image);
    }
    return allLoaded;
}

// --- Z-order -----------------------------------------------------------------

void KSprite::bringToFront()
{
    if (layer)
        layer->bringToFront(*this);
}

void KSprite::bringForward()
{
    if (layer)
        layer->bringForward(*this);
}

void KSprite::sendToBack()
{
    if (layer)
        layer->sendToBack(*this);
}

void KSprite::sendBackward()
{
    if (layer)
        layer->sendBackward(*this);
}
