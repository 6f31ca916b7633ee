#pragma once

#include "kernel/KBag.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KMultimediaForward.h"
#include "windowing/KTimer.h"

// The clock of the scene: a list of animated objects, stepped with time and
// tested for collisions. Two timers of the event loop drive it: the frame
// timer (20 ms, bounded rescheduling with a lag limit of 500 ms) and the
// rate timer (once a second), which measures the frames shown.
//
// Each frame draws first, so the screen shows the state of the previous
// step, and then steps to the clock. A frame that comes late makes up for
// the frames it missed with catch-up steps, up to `maxCatchUp` worth of
// them; those run at the new time and after it, and the last step goes back
// to the new time, so an object sees times that are not monotonic within a
// late frame and only its last one counts.
//
// The sprite system derives from this class and gives drawFrame a picture.
class KAnimationSystem : public KThing {
    K_DECLARE_CLASS(KAnimationSystem)
public:
    static constexpr int32_t kFrameInterval = 20;
    static constexpr int32_t kFrameLagLimit = 500;
    static constexpr int32_t kRateInterval = 1000;
    static constexpr int32_t kMaxCatchUp = 1000;
    // Room and growth of the object lists.
    static constexpr int32_t kListRoom = 1024;

    // Starts both timers at once: the system runs from construction on.
    KAnimationSystem();
    KAnimationSystem(const KAnimationSystem&) = delete;
    KAnimationSystem& operator=(const KAnimationSystem&) = delete;
    ~KAnimationSystem() override;

    // Runs every object's controller at `seconds`, then tests collisions.
    virtual void step(float seconds);
    // Shows the current state; the base class has nothing to show.
    virtual void drawFrame();
    // The frame and rate timers call here.
    void timerFired(KTimer& timer) override;

    // Appends unless listed.
    void addObject(KAnimationObject& object);
    // Takes it out of both lists; false if it was not in the object list.
    bool removeObject(KAnimationObject& object);
    // Appends unless listed, with its collision mark cleared.
    void addCollisionObject(KAnimationObject& object);
    // False if not listed; otherwise clears its collision mark and removes it.
    bool removeCollisionObject(KAnimationObject& object);
    void removeAllObjects();

    // Tests each collision object, not yet hit in this test, against every
    // other object, and tells it what it hit. An object is handled at most
    // once per test: one that was hit is not tested itself.
    void checkCollisions();

    void setNoCatchUp(bool value) { noCatchUp = value ? 1 : 0; }
    bool isNoCatchUp() const { return noCatchUp != 0; }
    // Sets the frame interval and starts the frame timer. An interval below
    // 1 ms is refused: the catch-up divides by it.
    void setFrameInterval(int32_t milliseconds);
    void setFrameTimerMode(KTimer::Mode mode);
    void setFrameTimerLag(int32_t milliseconds);
    int32_t getFrameInterval() const;
    // Stops the clock: both timers stop and forget this object.
    void pause();
    // Goes on without a jump: the time stays where it stood, and the next
    // frame counts from now.
    void resume();
    bool isPaused() const { return paused != 0; }

    KBag& getObjects() { return objects; }
    KBag& getCollisionObjects() { return collisionObjects; }
    const KBag& getHits() const { return hits; }
    KTimer* getFrameTimer() const { return frameTimer.get(); }
    KTimer* getRateTimer() const { return rateTimer.get(); }
    uint32_t getStartTime() const { return startTime; }
    uint32_t getLastTick() const { return lastTick; }
    int32_t getMaxCatchUp() const { return maxCatchUp; }
    void setMaxCatchUp(int32_t milliseconds) { maxCatchUp = milliseconds; }
    int32_t getFrameCount() const { return frameCount; }
    int32_t getCatchUpSteps() const { return catchUpSteps; }
    float getSeconds() const { return seconds; }
    float getFramesPerSecond() const { return framesPerSecond; }

protected:
    // The two timer cases.
    void frameFired();
    void rateFired();

    KBag objects;
    KBag collisionObjects;
    KBag hits;
    KTimerPtr frameTimer;
    KTimerPtr rateTimer;
    int32_t paused = 0;
    int32_t noCatchUp = 0;
    uint32_t startTime = 0;
    uint32_t lastTick = 0;
    int32_t maxCatchUp = kMaxCatchUp;
    int32_t frameCount = 0;
    int32_t catchUpSteps = 0;
    float seconds = 0.0f;
    float framesPerSecond = 0.0f;

private:
    void runCatchUp(int32_t interval);
    void testCollisions(KAnimationObject& object);
    void stopTimers();
    void startTimers();
};
