#include "kmultimedia/KAnimationObject.h"

#include "kernel/KBag.h"
#include "kernel/KClass.h"

K_DEFINE_CLASS(KAnimationObject, KThing)

KAnimationObject::KAnimationObject() = default;

KAnimationObject::KAnimationObject(const KAnimationObject& other)
    : KThing(other)
{
    copyFields(other);
}

KAnimationObject& KAnimationObject::operator=(const KAnimationObject& other)
{
    if (this != &other)
        copyFields(other);
    return *this;
}

KAnimationObject::~KAnimationObject() { releaseController(); }

KThing* KAnimationObject::deepCopy() const { return new KAnimationObject(*this); }

void KAnimationObject::copyFields(const KAnimationObject& other)
{
    releaseController();
    if (KAnimationController* theirs = other.controller.get()) {
        auto* copy = static_cast<KAnimationController*>(theirs->deepCopy());
        // Copies are held like any controller; one without a copy of its
        // own is shared.
        controller = copy ? copy : theirs;
        if (copy)
            copy->setTarget(*this);
    }
    position = other.position;
    origin = other.origin;
    scale = other.scale;
    objectFlags = other.objectFlags;
    collisionKind = other.collisionKind;
    collisionBit = other.collisionBit;
    collisionMask = other.collisionMask;
}

// A controller that still aims at this object is told it is gone.
void KAnimationObject::releaseController()
{
    if (KAnimationController* held = controller.get()) {
        if (held->getTarget() == this)
            held->clearTarget();
    }
    controller.clear();
}

void KAnimationObject::setController(KAnimationController& newController)
{
    if (controller.get() == &newController)
        return;
    releaseController();
    controller = newController;
    newController.setTarget(*this);
}

void KAnimationObject::clearController() { releaseController(); }

void KAnimationObject::show() { objectFlags.set(Visible); }

void KAnimationObject::hide() { objectFlags.clear(Visible); }

void KAnimationObject::setVisible(int32_t visible)
{
    if (visible == 1)
        show();
    else if (visible == 0)
        hide();
}

void KAnimationObject::setPosition(float x, float y) { position.set(x, y); }

void KAnimationObject::setPosition(const KAnimationPoint& p) { setPosition(p.x, p.y); }

const KAnimationPoint& KAnimationObject::getPosition() const { return position; }

void KAnimationObject::setOrigin(float x, float y) { origin.set(x, y); }

void KAnimationObject::setOrigin(const KAnimationVector& v) { setOrigin(v.x, v.y); }

const KAnimationVector& KAnimationObject::getOrigin() const { return origin; }

void KAnimationObject::setScale(float x, float y) { scale.set(x, y); }

void KAnimationObject::setScale(const KAnimationVector& v) { setScale(v.x, v.y); }

const KAnimationVector& KAnimationObject::getScale() const { return scale; }

bool KAnimationObject::overlaps(KAnimationObject&) { return false; }

void KAnimationObject::collided(KBag&) { }

void KAnimationObject::setCollisionDone(bool done)
{
    if (done)
        objectFlags.set(CollisionDone);
    else
        objectFlags.clear(CollisionDone);
}

bool KAnimationObject::selects(const KAnimationObject& other) const
{
    return collisionMask.test(int32_t(other.collisionBit));
}
