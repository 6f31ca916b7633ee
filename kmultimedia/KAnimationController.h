#pragma once

#include "kernel/KThing.h"
#include "kmultimedia/KMultimediaForward.h"

// Receives the animation's time for one animated object. The system calls
// update with timeOffset + timeScale × the scene's time; what that moves is
// up to a subclass, since the base class does nothing with it.
//
// The target is not counted: the animated object holds its controller, and
// a counted link back would keep both alive for ever. An object that goes
// clears itself from its controller.
class KAnimationController : public KThing {
    K_DECLARE_CLASS(KAnimationController)
public:
    KAnimationController() = default;
    // A copy takes the timing, never the target.
    KAnimationController(const KAnimationController& other);
    KAnimationController& operator=(const KAnimationController& other);
    ~KAnimationController() override;

    KThing* deepCopy() const override;

    virtual void setTarget(KThing& thing);
    virtual void clearTarget();
    virtual void update(float time);

    KThing* getTarget() const { return target; }
    float getTimeOffset() const { return timeOffset; }
    void setTimeOffset(float value) { timeOffset = value; }
    float getTimeScale() const { return timeScale; }
    void setTimeScale(float value) { timeScale = value; }
    // The time the controller is given at the scene's time `seconds`.
    float localTime(float seconds) const { return timeOffset + timeScale * seconds; }

protected:
    KThing* target = nullptr;
    float timeOffset = 0.0f;
    float timeScale = 1.0f;
};
