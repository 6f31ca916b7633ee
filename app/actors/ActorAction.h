#pragma once

#include "app/AppForward.h"
#include "graphics/KGraphicPoint.h"
#include "kernel/KString.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationVector.h"
#include "tape/TapeObject.h"

// A discrete command to an actor of the tape, named by its text name: it
// enters or leaves the scene, moves and resizes over time, jumps, changes
// its place in the stacking order or changes its movement.
//
// An actor is never drawn on the page image; it stands on the scene as a
// sprite above it. So the drawing operations do nothing, and `drawOnPage`
// means "apply the finished effect to the actor".
class ActorAction : public TapeObject {
    K_DECLARE_CLASS(ActorAction)
public:
    enum Action : int32_t {
        EnterOnScene = 1,
        ExitFromScene = 2,
        MoveResize = 3,
        JumpToPosition = 4,
        ChangeOrder = 5,
        ChangeMovement = 6,
    };
    enum OrderChange : int32_t {
        BringToFront = 0,
        BringOneForward = 1,
        BringOneBackward = 2,
        BringToBack = 3,
    };
    static constexpr int32_t kDefaultSpeed = 10;
    // "Move / Resize" with speed 0 would take no time at all; it is made
    // this slow instead, once and for good.
    static constexpr int32_t kSpeedForZero = 100;

    ActorAction();
    ActorAction(const ActorAction& other);
    ~ActorAction() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void drawOnPage() override;
    void redrawOver() override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;
    int32_t getToolEntry() const override;

    // The effect when the tape rebuilds the scene for a position: the
    // movement is only noted in `movementName` (the one noted so far for
    // this actor on the way in), and the rebuild shows it once at its end.
    virtual void applyOnRebuild(KString& movementName);

    void setAction(int32_t value);
    int32_t getAction() const { return action; }
    int32_t getActorAction() const override { return action; }
    void setSpeed(int32_t value);
    int32_t getSpeed() const { return speed; }
    void setActorName(const KString& value);
    const KString& getActorName() const override { return actorName; }
    void setMovementName(const KString& value);
    const KString& getMovementName() const { return movementName; }
    void setOrderChange(int32_t value);
    int32_t getOrderChange() const { return orderChange; }
    void setPosition(const KGraphicPoint& value);
    const KGraphicPoint& getPosition() const { return position; }
    void setScale(const KAnimationVector& value);
    const KAnimationVector& getScale() const { return scale; }
    int32_t getPlayStepCount() const { return playStepCount; }

    // The translated names; "Not Defined" outside the tables.
    static KString getActionName(int32_t number);
    static KString getOrderChangeName(int32_t number);

private:
    // The tape's actor of this element's name; null without one.
    Actor* findActor() const;
    bool isOnScene() const;
    void placeActor(Actor& actor) const;
    void enter(Actor& actor);
    void leave(Actor& actor);
    void changeOrder(Actor& actor) const;
    void finish();

    KString actorName;
    KString movementName;
    int32_t action = EnterOnScene;
    int32_t speed = kDefaultSpeed;
    int32_t orderChange = BringToFront;
    KGraphicPoint position { 10, 10 };
    KAnimationVector scale { 1.0f, 1.0f };
    // Where a "Move / Resize" started, and how far it has come.
    KAnimationVector startScale;
    KAnimationPoint startPosition;
    int32_t playStepCount = 0;
};
