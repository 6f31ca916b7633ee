#pragma once

#include "kernel/KFlagSet.h"
#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KAnimationController.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationVector.h"
#include "kmultimedia/KMultimediaForward.h"

// A thing of the scene that the animation system steps and tests for
// collisions: a position, an origin and a scale, visibility, and the
// collision bits. `origin` is the point of the object, in unscaled object
// units, that stands on `position`. An object collides with the objects
// whose `collisionBit` its `collisionMask` holds, when its `overlaps` says
// so; the base class overlaps nothing and ignores collisions, and the
// sprite class gives both a meaning.
//
// The two forms of each setter meet in the one that takes two floats, so a
// subclass that overrides that one sees every change.
class KAnimationObject : public KThing {
    K_DECLARE_CLASS(KAnimationObject)
public:
    enum Flag : int32_t {
        Visible = 1,
        CollisionDone = 2,
    };

    KAnimationObject();
    // A copy takes a copy of the controller, aimed at the copy.
    KAnimationObject(const KAnimationObject& other);
    KAnimationObject& operator=(const KAnimationObject& other);
    ~KAnimationObject() override;

    KThing* deepCopy() const override;

    // The controller is held, and aimed at this object.
    virtual void setController(KAnimationController& newController);
    virtual void clearController();
    virtual void show();
    virtual void hide();
    virtual void setPosition(float x, float y);
    virtual void setPosition(const KAnimationPoint& p);
    virtual const KAnimationPoint& getPosition() const;
    virtual void setOrigin(float x, float y);
    virtual void setOrigin(const KAnimationVector& v);
    virtual const KAnimationVector& getOrigin() const;
    virtual void setScale(float x, float y);
    virtual void setScale(const KAnimationVector& v);
    virtual const KAnimationVector& getScale() const;
    virtual bool overlaps(KAnimationObject& other);
    // Called once per step with the objects this one hit. It may remove
    // this object (or others) from the system.
    virtual void collided(KBag& hits);

    // 1 shows, 0 hides; any other value is ignored.
    void setVisible(int32_t visible);
    bool isVisible() const { return objectFlags.test(Visible); }

    KAnimationController* getController() const { return controller.get(); }
    const KFlagSet& getObjectFlags() const { return objectFlags; }
    bool isCollisionDone() const { return objectFlags.test(CollisionDone); }
    void setCollisionDone(bool done);
    int32_t getCollisionKind() const { return collisionKind; }
    void setCollisionKind(int32_t kind) { collisionKind = kind; }
    uint32_t getCollisionBit() const { return collisionBit; }
    void setCollisionBit(uint32_t bit) { collisionBit = bit; }
    const KFlagSet& getCollisionMask() const { return collisionMask; }
    void setCollisionMask(const KFlagSet& mask) { collisionMask = mask; }
    // Whether this object's mask selects the other's bit.
    bool selects(const KAnimationObject& other) const;

protected:
    void copyFields(const KAnimationObject& other);
    void releaseController();

    KAnimationControllerPtr controller;
    KAnimationPoint position;
    KAnimationVector origin;
    KAnimationVector scale { 1.0f, 1.0f };
    KFlagSet objectFlags { Visible };
    // A free number that travels with the object; nothing reads it.
    int32_t collisionKind = 0;
    uint32_t collisionBit = 0;
    KFlagSet collisionMask;
};
