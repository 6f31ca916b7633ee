#include "kmultimedia/KAnimationSystem.h"

#include "kernel/KClass.h"
#include "kmultimedia/KAnimationController.h"
#include "kmultimedia/KAnimationObject.h"
#include "windowing/KNativeLayer.h"

#include <algorithm>

K_DEFINE_CLASS(KAnimationSystem, KThing)

namespace {

void prepareList(KBag& bag)
{
    bag.setGrowSize(KAnimationSystem::kListRoom);
    bag.setMinSize(KAnimationSystem::kListRoom);
}

KAnimationObject* objectAt(const KBag& bag, int32_t index) { return static_cast<KAnimationObject*>(bag.getAt(index)); }

} // namespace

KAnimationSystem::KAnimationSystem()
    : frameTimer(new KTimer())
    , rateTimer(new KTimer())
{
    startTime = knsGetTime();
    lastTick = startTime;

    rateTimer->setInterval(kRateInterval);
    rateTimer->setRepeat(true);
    rateTimer->setTarget(this);
    rateTimer->start();

    frameTimer->setInterval(kFrameInterval);
    frameTimer->setMode(KTimer::Bounded);
    frameTimer->setMaximumLag(kFrameLagLimit);
    frameTimer->setRepeat(true);
    frameTimer->setTarget(this);
    frameTimer->start();

    prepareList(objects);
    prepareList(collisionObjects);
    prepareList(hits);
}

KAnimationSystem::~KAnimationSystem()
{
    stopTimers();
    frameTimer.clear();
    rateTimer.clear();
    hits.clear();
    collisionObjects.clear();
    objects.clear();
}

void KAnimationSystem::stopTimers()
{
    for (KTimer* timer : { frameTimer.get(), rateTimer.get() }) {
        if (!timer)
            continue;
        timer->stop();
        timer->setTarget(nullptr);
    }
}

void KAnimationSystem::startTimers()
{
    for (KTimer* timer : { frameTimer.get(), rateTimer.get() }) {
        timer->setTarget(this);
        timer->start();
    }
}

// --- Objects ---------------------------------------------------------------

void KAnimationSystem::addObject(KAnimationObject& object)
{
    if (!objects.has(object))
        objects.add(object);
}

bool KAnimationSystem::removeObject(KAnimationObject& object)
{
    if (!objects.has(object)) {
        removeCollisionObject(object);
        return false;
    }
    // The list may hold the last reference; the object must outlive both
    // removals.
    KAnimationObjectPtr held(object);
    objects.removeObject(object);
    removeCollisionObject(object);
    return true;
}

void KAnimationSystem::addCollisionObject(KAnimationObject& object)
{
    if (collisionObjects.has(object))
        return;
    object.setCollisionDone(false);
    collisionObjects.add(object);
}

bool KAnimationSystem::removeCollisionObject(KAnimationObject& object)
{
    if (!collisionObjects.has(object))
        return false;
    object.setCollisionDone(false);
    collisionObjects.removeObject(object);
    return true;
}

void KAnimationSystem::removeAllObjects()
{
    hits.clear();
    collisionObjects.clear();
    objects.clear();
}

// --- Timers ----------------------------------------------------------------

int32_t KAnimationSystem::getFrameInterval() const { return frameTimer->getInterval(); }

void KAnimationSystem::setFrameInterval(int32_t milliseconds)
{
    if (milliseconds < 1)
        return;
    frameTimer->setInterval(milliseconds);
    frameTimer->start();
}

void KAnimationSystem::setFrameTimerMode(KTimer::Mode mode) { frameTimer->setMode(mode); }

void KAnimationSystem::setFrameTimerLag(int32_t milliseconds) { frameTimer->setMaximumLag(milliseconds); }

void KAnimationSystem::pause()
{
    if (paused)
        return;
    paused = 1;
    stopTimers();
}

void KAnimationSystem::resume()
{
    if (!paused)
        return;
    paused = 0;
    lastTick = knsGetTime();
    startTimers();
}

void KAnimationSystem::timerFired(KTimer& timer)
{
    if (&timer == frameTimer.get())
        frameFired();
    else if (&timer == rateTimer.get())
        rateFired();
}

void KAnimationSystem::frameFired()
{
    ++frameCount;
    if (paused)
        return;
    drawFrame();
    uint32_t now = knsGetTime();
    int32_t elapsed = kTimeDifference(now, lastTick);
    seconds += float(elapsed / 1000.0);
    int32_t interval = frameTimer->getInterval();
    catchUpSteps = 0;
    if (!noCatchUp && interval > 0) {
        catchUpSteps = std::min(elapsed / interval, maxCatchUp / interval) - 1;
        runCatchUp(interval);
    }
    step(seconds);
    lastTick = now;
}

// The steps owed beyond the one every frame takes, at the frame's time and
// one interval after another from there.
void KAnimationSystem::runCatchUp(int32_t interval)
{
    if (catchUpSteps < 2)
        return;
    float time = seconds;
    float increment = float(interval / 1000.0);
    for (int32_t i = 0; i < catchUpSteps - 1; ++i) {
        step(time);
        time += increment;
    }
}

void KAnimationSystem::rateFired()
{
    framesPerSecond = float(frameCount);
    frameCount = 1;
}

// --- Steps -----------------------------------------------------------------

void KAnimationSystem::drawFrame() { }

void KAnimationSystem::step(float time)
{
    for (int32_t i = 0; i < objects.getSize(); ++i) {
        KAnimationObjectPtr object(objectAt(objects, i));
        if (!object)
            continue;
        if (KAnimationController* controller = object->getController())
            controller->update(controller->localTime(time));
    }
    checkCollisions();
}

void KAnimationSystem::checkCollisions()
{
    for (int32_t i = 0; i < collisionObjects.getSize(); ++i) {
        if (KAnimationObject* object = objectAt(collisionObjects, i))
            object->setCollisionDone(false);
    }
    int32_t index = 0;
    while (index < collisionObjects.getSize()) {
        KAnimationObjectPtr object(objectAt(collisionObjects, index));
        if (!object) {
            ++index;
            continue;
        }
        testCollisions(*object);
        // A collided that took the object out of the list leaves the next
        // one at the same index.
        int32_t position = 0;
        if (collisionObjects.has(*object, &position))
            index = position + 1;
    }
    // The hits are only lent to collided; the list keeps no one alive.
    hits.clear();
}

void KAnimationSystem::testCollisions(KAnimationObject& object)
{
    if (object.getCollisionMask().getValue() == 0 || object.isCollisionDone() || !object.isVisible())
        return;
    object.setCollisionDone(true);
    hits.clear();
    for (int32_t i = 0; i < objects.getSize(); ++i) {
        KAnimationObject* other = objectAt(objects, i);
        if (!other || other == &object)
            continue;
        if (object.selects(*other) && object.overlaps(*other)) {
            other->setCollisionDone(true);
            hits.add(*other);
        }
    }
    if (!hits.isEmpty())
        object.collided(hits);
}
