#include "app/actors/Actor.h"

#include "app/actors/ActorSequence.h"
#include "graphics/KAlphaImage.h"
#include "graphics/KColor.h"
#include "graphics/KGraphicDevice.h"
#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KLocalizer.h"
#include "kernel/KStringBag.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "windowing/KWindow.h"
#include "windowing/KWindowManager.h"

#include <algorithm>
#include <climits>
#include <cstdint>

K_DEFINE_CLASS(Actor, KSprite)

namespace {

// The frame timer of a new actor, before any movement sets its own speed.
constexpr int32_t kInitialTimerInterval = 10;

Actor::PlayingQuery gPlayingQuery = nullptr;

int16_t toCoordinate(float value) { return int16_t(int32_t(value)); }

int16_t toShortSize(int32_t value) { return int16_t(std::clamp<int32_t>(value, INT16_MIN, INT16_MAX)); }

// The busy cursor for the time of a rendering, unless a story is playing:
// there a rendering is part of the show.
class RenderingCursor {
public:
    RenderingCursor()
        : shown(!gPlayingQuery || !gPlayingQuery())
    {
        if (shown)
            TapeHost::get().beginBusyCursor();
    }
    ~RenderingCursor()
    {
        if (shown)
            TapeHost::get().endBusyCursor();
    }
    RenderingCursor(const RenderingCursor&) = delete;
    RenderingCursor& operator=(const RenderingCursor&) = delete;

private:
    bool shown;
};

} // namespace

void Actor::setPlayingQuery(PlayingQuery query) { gPlayingQuery = query; }

// --- Life ----------------------------------------------------------------------

Actor::Actor() { initialise(KGraphicSize(kDefaultPageWidth, kDefaultPageHeight)); }

Actor::Actor(const KGraphicSize& pageSize) { initialise(pageSize); }

void Actor::initialise(const KGraphicSize& pageSize)
{
    frameTimer = kAdopt(new KTimer());
    frameTimer->setInterval(kInitialTimerInterval);
    frameTimer->setRepeat(true);
    pageWidth = pageSize.width;
    pageHeight = pageSize.height;
    ActorSequencePtr sequence(new ActorSequence());
    TapePtr frame(new Tape());
    adoptFrameTape(*frame);
    sequence->addFrame(*frame);
    sequences.add(*sequence);
}

// What was rendered stays with the original: a copy renders its own.
Actor::Actor(const Actor& other)
    : KSprite(other)
    , fileName(other.fileName)
    , displayName(other.displayName)
    , spriteCookie(other.spriteCookie)
    , cookie(other.cookie)
    , bounds(other.bounds)
    , playType(other.playType)
    , actorFlags(other.actorFlags)
    , pageWidth(other.pageWidth)
    , pageHeight(other.pageHeight)
{
    frameTimer = kAdopt(new KTimer());
    frameTimer->setInterval(kInitialTimerInterval);
    frameTimer->setRepeat(true);
    actorFlags.remove(Forward);
    clearFrames();
    copyMovements(other);
}

void Actor::copyMovements(const Actor& other)
{
    for (int32_t i = 0; i < other.sequences.getSize(); ++i) {
        if (ActorSequence* sequence = other.getSequenceAt(i)) {
            ActorSequencePtr copy = kAdopt(new ActorSequence(*sequence));
            sequences.add(*copy);
        }
    }
    adoptFrameTapes();
}

Actor::~Actor()
{
    stop();
    hide();
    frames.clear();
    // A frame tape held elsewhere must not point at a gone actor.
    for (int32_t s = 0; s < sequences.getSize(); ++s) {
        ActorSequence* sequence = getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            if (Tape* tape = sequence->getFrame(f); tape && tape->getOwnerActor() == this)
                tape->setOwnerActor(nullptr);
        }
    }
    sequences.clear();
}

KThing* Actor::deepCopy() const { return new Actor(*this); }

void Actor::clearFrames()
{
    frames.clear();
    currentMovement = KString();
}

void Actor::setModified(bool modified)
{
    if (modified)
        actorFlags.add(Modified);
    else
        actorFlags.remove(Modified);
}

void Actor::setForward(bool forward)
{
    if (forward)
        actorFlags.add(Forward);
    else
        actorFlags.remove(Forward);
}

KGraphicSize Actor::getPageSize() const { return KGraphicSize(toShortSize(pageWidth), toShortSize(pageHeight)); }

void Actor::setPageSize(const KGraphicSize& size)
{
    pageWidth = size.width;
    pageHeight = size.height;
    adoptFrameTapes();
}

void Actor::adoptFrameTape(Tape& tape) const
{
    tape.setOwnerActor(const_cast<Actor*>(this));
    tape.setFrameKind(Tape::ActorFrame);
    tape.setPageSize(getPageSize());
}

void Actor::adoptFrameTapes()
{
    for (int32_t s = 0; s < sequences.getSize(); ++s) {
        ActorSequence* sequence = getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            if (Tape* tape = sequence->getFrame(f))
                adoptFrameTape(*tape);
        }
    }
}

KGraphicRectangle Actor::getBounds()
{
    const KAnimationVector& s = getScale();
    const KAnimationPoint& p = getPosition();
    const KAnimationVector& o = getOrigin();
    return KGraphicRectangle(toCoordinate(p.x - o.x * s.x), toCoordinate(p.y - o.y * s.y),
                             toCoordinate(float(bounds.width) * s.x), toCoordinate(float(bounds.height) * s.y));
}

// --- Movements -----------------------------------------------------------------

ActorSequence* Actor::getSequenceAt(int32_t index) const
{
    if (index < 0 || index >= sequences.getSize())
        return nullptr;
    return dynamic_cast<ActorSequence*>(sequences.getAt(index));
}

ActorSequence* Actor::findSequence(const KString& name) const
{
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        ActorSequence* sequence = getSequenceAt(i);
        if (sequence && sequence->getName() == name)
            return sequence;
    }
    return nullptr;
}

ActorSequence& Actor::getSequence(const KString& sequenceName)
{
    if (ActorSequence* sequence = findSequence(sequenceName))
        return *sequence;
    KErrorHandler::raiseError(KError::PointerNull);
    // Only reached when errors are forwarded: a stand-in keeps the caller
    // off a null reference.
    static ActorSequencePtr standIn(new ActorSequence());
    return *standIn;
}

bool Actor::hasSequence(const KString& sequenceName) const { return findSequence(sequenceName) != nullptr; }

KStringBagPtr Actor::getSequenceNames() const
{
    KStringBagPtr names(new KStringBag());
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        if (ActorSequence* sequence = getSequenceAt(i))
            names->add(sequence->getName());
    }
    return names;
}

Tape* Actor::getFrameTape(const KString& sequenceName, int32_t frameIndex) const
{
    if (ActorSequence* sequence = findSequence(sequenceName))
        return sequence->getFrame(frameIndex);
    KErrorHandler::raiseError(KError::PointerNull);
    return nullptr;
}

Tape* Actor::getFrameTape(int32_t sequence, int32_t frame) const
{
    ActorSequence* found = getSequenceAt(sequence);
    return found ? found->getFrame(frame) : nullptr;
}

void Actor::addSequence(ActorSequence& sequence)
{
    sequences.add(sequence);
    for (int32_t f = 0; f < sequence.getFrameCount(); ++f) {
        if (Tape* tape = sequence.getFrame(f))
            adoptFrameTape(*tape);
    }
}

void Actor::removeSequence(ActorSequence& sequence) { sequences.removeObject(sequence); }

bool Actor::getFrameRange(const KString& name, int32_t& first, int32_t& last) const
{
    int32_t before = 0;
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        ActorSequence* sequence = getSequenceAt(i);
        if (!sequence)
            continue;
        if (sequence->getName() == name) {
            first = before;
            last = std::max(before, before + sequence->getFrameCount() - 1);
            return true;
        }
        before += sequence->getFrameCount();
    }
    first = 0;
    last = 0;
    return false;
}

// --- Media -------------------------------------------------------------------

void Actor::collectMedia(KDirectory& from, KDirectory& to)
{
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        if (ActorSequence* sequence = getSequenceAt(i))
            sequence->collectMedia(from, to);
    }
}

bool Actor::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    bool changed = false;
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        if (ActorSequence* sequence = getSequenceAt(i))
            changed = sequence->replaceMedia(oldFile, newFile) || changed;
    }
    return changed;
}

void Actor::addMediaName(KStringBag& names)
{
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        if (ActorSequence* sequence = getSequenceAt(i))
            sequence->addMediaName(names);
    }
}

bool Actor::usesMediaNamed(const KString& name)
{
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        ActorSequence* sequence = getSequenceAt(i);
        if (sequence && sequence->usesMediaNamed(name))
            return true;
    }
    return false;
}

bool Actor::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    for (int32_t i = 0; i < sequences.getSize(); ++i) {
        ActorSequence* sequence = getSequenceAt(i);
        if (sequence && sequence->findMissingMedia(directory, second))
            return true;
    }
    return false;
}

// --- Rendering -----------------------------------------------------------------

void Actor::recomputeBounds()
{
    bounds = KGraphicRectangle(0, 0, 0, 0);
    for (int32_t s = 0; s < sequences.getSize(); ++s) {
        ActorSequence* sequence = getSequenceAt(s);
        for (int32_t f = 0; sequence && f < sequence->getFrameCount(); ++f) {
            Tape* tape = sequence->getFrame(f);
            for (int32_t e = 0; tape && e < tape->getCount(); ++e) {
                if (TapeObject* element = tape->getAt(e))
                    bounds.uniteWith(element->getBounds());
            }
        }
    }
}

// Each element lands shifted from the page to the image's corner; with a
// mask, its silhouette (black on white) says where the image shows, and the
// image is white around it.
KAlphaImagePtr Actor::renderFrame(Tape& frame, bool withMask) const
{
    KGraphicSize size = bounds.getSize();
    KAlphaImagePtr image(new KAlphaImage(size));
    KGraphicRectangle corner(0, 0, size.width, size.height);
    if (!withMask)
        image->setBlendMode(KAlphaImage::Masked);
    if (bounds.isEmpty())
        return image;
    KImagePtr mask;
    if (withMask) {
        mask = kAdopt(new KImage(size));
        mask->getDevice().fillRectangle(corner, KColor(KColor::White));
        // A masked image is drawn by ANDing it over the scene where the
        // mask is white, so it must be white there to leave the scene be.
        image->getDevice().fillRectangle(corner, KColor(KColor::White));
    }
    for (int32_t e = 0; e < frame.getCount(); ++e) {
        TapeObject* element = frame.getAt(e);
        if (!element)
            continue;
        element->drawOn(image->getDevice(), bounds, corner);
        if (mask)
            element->drawSilhouette(mask->getDevice(), bounds, corner);
    }
    if (mask) {
        image->setMask(*mask);
        image->setBlendMode(KAlphaImage::Masked);
    }
    return image;
}

void Actor::renderSequenceFrames(ActorSequence& sequence, bool withMask, bool trackLastFrame)
{
    for (int32_t f = 0; f < sequence.getFrameCount(); ++f) {
        Tape* tape = sequence.getFrame(f);
        if (!tape)
            continue;
        KAlphaImagePtr image = renderFrame(*tape, withMask);
        addFrame(*image);
        if (trackLastFrame)
            lastFrame = f;
    }
}

void Actor::renderAll()
{
    RenderingCursor cursor;
    reset();
    recomputeBounds();
    for (int32_t s = 0; s < sequences.getSize(); ++s) {
        if (ActorSequence* sequence = getSequenceAt(s))
            renderSequenceFrames(*sequence, true, false);
    }
    firstFrame = 0;
    lastFrame = 0;
    pulseTimer();
}

// The timer runs for a moment and stops again, which leaves it with a
// fresh start time.
void Actor::pulseTimer()
{
    frameTimer->start();
    frameTimer->stop();
}

void Actor::renderMovement(const KString& name)
{
    RenderingCursor cursor;
    reset();
    recomputeBounds();
    if (ActorSequence* sequence = findSequence(name))
        renderSequenceFrames(*sequence, false, false);
    firstFrame = 0;
    lastFrame = std::max(0, frames.getSize() - 1);
    setFrame(0);
}

// --- Playing -------------------------------------------------------------------

void Actor::stop()
{
    frameTimer->setInterval(-1);
    frameTimer->setTarget(nullptr);
}

void Actor::reset()
{
    stop();
    hide();
    clearFrames();
    setFrame(-1);
}

void Actor::startTimer(int32_t speed)
{
    frameTimer->stop();
    // A speed from a file may be anything; its square must still fit.
    int64_t interval = int64_t(speed) * speed;
    frameTimer->setInterval(int32_t(std::min<int64_t>(interval, INT32_MAX)));
    frameTimer->setRepeat(true);
    frameTimer->setTarget(this);
    frameTimer->start();
}

void Actor::setMovement(const KString& name)
{
    ActorSequence* sequence = findSequence(name);
    if (!sequence) {
        stop();
        firstFrame = 0;
        lastFrame = 0;
        setFrame(0);
        return;
    }
    if (name != currentMovement) {
        RenderingCursor cursor;
        reset();
        // The bounds are the union over every frame by definition; a frame
        // painted since the last save would otherwise be cut.
        recomputeBounds();
        lastFrame = 0;
        renderSequenceFrames(*sequence, true, true);
    }
    firstFrame = 0;
    setFrame(0);
    setForward(true);
    playType = sequence->getPlayType();
    if (playType == OnceReverse) {
        setFrame(lastFrame);
        setForward(false);
    }
    startTimer(sequence->getSpeed());
    currentMovement = name;
    show();
}

void Actor::playRendered(int32_t speed, int32_t type)
{
    firstFrame = 0;
    lastFrame = std::max(0, frames.getSize() - 1);
    setFrame(0);
    setForward(true);
    playType = type;
    if (type == OnceReverse) {
        setFrame(lastFrame);
        setForward(false);
    }
    startTimer(speed);
}

// Movements wait while a modal dialog stands in front, except the dialog
// that previews actors, whose whole point is to show them moving.
bool Actor::modalDialogInFront() const
{
    KWindowManager* manager = KWindowManager::current();
    if (!manager || manager->getModalCount() <= 0)
        return false;
    KWindow* front = manager->frontWindow();
    KClass* selector = nullptr;
    if (!front || !KClass::hasClass("SpriteSelectorDialog", &selector))
        return true;
    return !front->isEqualOrSubClass(selector);
}

int32_t Actor::nextFrame(int32_t current)
{
    int32_t n = current;
    switch (playType) {
    case PlayOnce:
        n = current + 1;
        if (n >= lastFrame)
            playType = StaticImage;
        break;
    case OnceReverse:
        n = current - 1;
        if (n < firstFrame) {
            playType = StaticImage;
            n = firstFrame;
        }
        break;
    case OnceForwardAndReverse:
        if (isForward()) {
            n = current + 1;
            if (n >= lastFrame) {
                setForward(false);
                n = lastFrame;
            }
        } else {
            n = current - 1;
            if (n <= firstFrame) {
                playType = StaticImage;
                n = firstFrame;
            }
        }
        break;
    case PlayRepeated:
        n = current + 1;
        if (n > lastFrame)
            n = firstFrame;
        break;
    case RepeatedReverse:
        n = current - 1;
        if (n < firstFrame)
            n = lastFrame;
        break;
    case RepeatedForwardAndReverse:
        if (isForward()) {
            n = current + 1;
            if (n >= lastFrame)
                setForward(false);
        } else {
            n = current - 1;
            if (n <= firstFrame)
                setForward(true);
        }
        break;
    default:
        break;
    }
    return n;
}

void Actor::timerFired(KTimer& timer)
{
    if (modalDialogInFront())
        return;
    if (&timer != frameTimer.get())
        return;
    if (playType < PlayOnce || playType > RepeatedForwardAndReverse)
        return;
    int32_t n = nextFrame(currentFrame);
    setFrame(std::clamp(n, firstFrame, std::max(firstFrame, lastFrame)));
}

KString Actor::getPlayTypeName(int32_t type)
{
    static const char* const names[] = {
        kTranslatable("Static Image"),
        kTranslatable("Play Once"),
        kTranslatable("Once Reverse"),
        kTranslatable("Play Once Forward and Reverse"),
        kTranslatable("Play Repeated"),
        kTranslatable("Play Repeated Reverse"),
        kTranslatable("Play Repeated Forward and Reverse"),
    };
    if (type < 1 || type > 7)
        return KString();
    return tapeTranslate(names[type - 1]);
}

void Actor::describe(KJsonWriter& out) const
{
    out.member("fileName", fileName);
    out.member("displayName", displayName);
    out.member("cookie", cookie);
    out.member("pageWidth", pageWidth);
    out.member("pageHeight", pageHeight);
    out.member("currentMovement", currentMovement);
    out.objectMember("bounds", &bounds);
    out.objectMember("sequences", &sequences);
}
