#include "kmultimedia/KAnimationController.h"

#include "kernel/KClass.h"

K_DEFINE_CLASS(KAnimationController, KThing)

KAnimationController::KAnimationController(const KAnimationController& other)
    : KThing(other)
    , timeOffset(other.timeOffset)
    , timeScale(other.timeScale)
{
}

// Only two numbers are copied, which is harmless onto themselves.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
KAnimationController& KAnimationController::operator=(const KAnimationController& other)
{
    timeOffset = other.timeOffset;
    timeScale = other.timeScale;
    return *this;
}

KAnimationController::~KAnimationController() = default;

KThing* KAnimationController::deepCopy() const { return new KAnimationController(*this); }

void KAnimationController::setTarget(KThing& thing) { target = &thing; }

void KAnimationController::clearTarget() { target = nullptr; }

void KAnimationController::update(float) { }
