#include "app/actors/ActorAction.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorLoading.h"
#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KLocalizer.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaName.h"
#include "tape/TapePage.h"

namespace {

constexpr int32_t kMainSection = 1;

const char* const kActionNames[] = {
    kTranslatable("Enter on Scene"),   kTranslatable("Exit from Scene"), kTranslatable("Move / Resize"),
    kTranslatable("Jump To Position"), kTranslatable("Change Order"),    kTranslatable("Change Movement"),
};
constexpr int32_t kActionCount = int32_t(sizeof(kActionNames) / sizeof(kActionNames[0]));

const char* const kOrderChangeNames[] = {
    kTranslatable("Bring To Front"),
    kTranslatable("Bring One Actor Forward"),
    kTranslatable("Send Backward"),
    kTranslatable("Send to Back"),
};
constexpr int32_t kOrderChangeCount = int32_t(sizeof(kOrderChangeNames) / sizeof(kOrderChangeNames[0]));

const char* const kNotDefined = kTranslatable("Not Defined");

float between(float from, float to, double fraction) { return float(from + (to - from) * fraction); }

} // namespace

K_DEFINE_CLASS(ActorAction, TapeObject)

ActorAction::ActorAction() { setType(ActorActionType); }

ActorAction::ActorAction(const ActorAction& other)
    : TapeObject(other)
    , actorName(other.actorName)
    , movementName(other.movementName)
    , action(other.action)
    , speed(other.speed)
    , orderChange(other.orderChange)
    , position(other.position)
    , scale(other.scale)
{
    setType(ActorActionType);
}

ActorAction::~ActorAction() = default;

KThing* ActorAction::deepCopy() const { return new ActorAction(*this); }

// --- Fields ------------------------------------------------------------------------

void ActorAction::setAction(int32_t value)
{
    action = value;
    noteChanged();
}

void ActorAction::setSpeed(int32_t value)
{
    speed = value;
    noteChanged();
}

void ActorAction::setActorName(const KString& value)
{
    actorName = value;
    noteChanged();
}

void ActorAction::setMovementName(const KString& value)
{
    movementName = value;
    noteChanged();
}

void ActorAction::setOrderChange(int32_t value)
{
    orderChange = value;
    noteChanged();
}

void ActorAction::setPosition(const KGraphicPoint& value)
{
    position = value;
    noteChanged();
}

void ActorAction::setScale(const KAnimationVector& value)
{
    scale = value;
    noteChanged();
}

KString ActorAction::getActionName(int32_t number)
{
    if (number < EnterOnScene || number > kActionCount)
        return tapeTranslate(kNotDefined);
    return tapeTranslate(kActionNames[number - 1]);
}

KString ActorAction::getOrderChangeName(int32_t number)
{
    if (number < 0 || number >= kOrderChangeCount)
        return tapeTranslate(kNotDefined);
    return tapeTranslate(kOrderChangeNames[number]);
}

// The palette has one entry per action, behind the entry of the type.
int32_t ActorAction::getToolEntry() const { return getType() + action - 1; }

// --- Persistence -------------------------------------------------------------------

void ActorAction::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(kMainSection);
    TapeObject::writeToFile(file, version);
    actorName.writeToFile(file, version);
    movementName.writeToFile(file, version);
    file.writeShort(int16_t(action));
    position.writeToFile(file, version);
    scale.writeToFile(file, version);
    file.writeLong(speed);
    file.writeShort(int16_t(orderChange));
    writer.end();
}

void ActorAction::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(file);
        setType(ActorActionType);
        actorName.readFromFile(file);
        movementName.readFromFile(file);
        action = file.readShort();
        position.readFromFile(file);
        scale.readFromFile(file);
        speed = file.readLong();
        orderChange = file.readShort();
    };
    KClassReader::readSections(file, classRecord, { { kMainSection, readMain } });
    tapeAcceptMediaName(actorName);
    noteChanged();
}

void ActorAction::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.member("actorName", actorName);
    out.member("movementName", movementName);
    out.member("action", action);
    out.member("speed", speed);
    out.member("orderChange", orderChange);
    out.member("x", int32_t(position.x));
    out.member("y", int32_t(position.y));
    out.member("scaleX", double(scale.x));
    out.member("scaleY", double(scale.y));
}

// --- The actor ---------------------------------------------------------------------

Actor* ActorAction::findActor() const
{
    Tape* tape = getTape();
    return tape ? dynamic_cast<Actor*>(tape->getActor(actorName)) : nullptr;
}

bool ActorAction::isOnScene() const
{
    TapePage* page = getPage();
    return page && page->isActorOnScene(*getTape(), actorName);
}

void ActorAction::placeActor(Actor& actor) const
{
    actor.setPosition(KAnimationPoint(position));
    actor.setScale(scale);
}

// An actor without the movement asked for stays off the scene, though it
// takes the place.
void ActorAction::enter(Actor& actor)
{
    placeActor(actor);
    if (!actor.hasSequence(movementName))
        return;
    actor.setMovement(movementName);
    if (TapePage* page = getPage())
        page->putActorOnScene(*getTape(), actorName);
}

// The place the actor stood is wiped at once rather than at the scene's
// next frame.
void ActorAction::leave(Actor& actor)
{
    if (TapePage* page = getPage()) {
        KGraphicRectangle place = actor.getBounds();
        page->removeActorFromScene(*getTape(), actorName);
        page->refresh(place);
        page->drawFrame();
    }
    actor.reset();
}

void ActorAction::changeOrder(Actor& actor) const
{
    switch (orderChange) {
    case BringToFront:
        actor.bringToFront();
        return;
    case BringOneForward:
        actor.bringForward();
        return;
    case BringOneBackward:
        actor.sendBackward();
        return;
    case BringToBack:
        actor.sendToBack();
        return;
    default:
        return;
    }
}

void ActorAction::drawOnPage()
{
    Actor* found = findActor();
    if (!found)
        return;
    ActorPtr actor(found);
    switch (action) {
    case EnterOnScene:
        enter(*actor);
        return;
    case ExitFromScene:
        leave(*actor);
        return;
    case MoveResize:
    case JumpToPosition:
        if (isOnScene())
            placeActor(*actor);
        return;
    case ChangeOrder:
        if (isOnScene())
            changeOrder(*actor);
        return;
    case ChangeMovement:
        if (isOnScene() && actor->hasSequence(movementName))
            actor->setMovement(movementName);
        return;
    default:
        return;
    }
}

void ActorAction::applyOnRebuild(KString& noted)
{
    Actor* found = findActor();
    if (!found)
        return;
    ActorPtr actor(found);
    TapePage* page = getPage();
    switch (action) {
    case EnterOnScene:
        placeActor(*actor);
        if (page)
            page->putActorOnScene(*getTape(), actorName);
        noted = movementName;
        return;
    case ExitFromScene:
        if (page)
            page->removeActorFromScene(*getTape(), actorName);
        return;
    case ChangeMovement:
        noted = movementName;
        return;
    case MoveResize:
    case JumpToPosition:
    case ChangeOrder:
        drawOnPage();
        return;
    default:
        return;
    }
}

// An actor is on the scene, never on the page image.
void ActorAction::redrawOver() { }

// --- Playing -----------------------------------------------------------------------

void ActorAction::finish()
{
    if (Tape* tape = getTape())
        tape->clearPlayingObject();
}

// Every action but "Move / Resize" takes effect at once and costs the one
// tick of the tape it starts in; that one holds the tape while it moves.
void ActorAction::startPlaying()
{
    Actor* actor = findActor();
    if (!actor || action != MoveResize) {
        if (actor)
            drawOnPage();
        finish();
        return;
    }
    if (!isOnScene()) {
        finish();
        return;
    }
    startScale = actor->getScale();
    startPosition = actor->getPosition();
    playStepCount = 1;
    if (speed == 0) {
        speed = kSpeedForZero;
        noteChanged();
    }
}

// The straight way from where the actor stood to the target, in speed *
// speed steps, scale and place alike.
void ActorAction::playStep()
{
    Actor* found = action == MoveResize ? findActor() : nullptr;
    if (!found) {
        finish();
        return;
    }
    ActorPtr actor(found);
    int64_t total = int64_t(speed) * speed;
    int32_t k = playStepCount++;
    if (total <= 0 || playStepCount >= total) {
        placeActor(*actor);
        finish();
        return;
    }
    double fraction = double(k) / double(total);
    actor->setPosition(between(startPosition.x, position.x, fraction), between(startPosition.y, position.y, fraction));
    actor->setScale(between(startScale.x, scale.x, fraction), between(startScale.y, scale.y, fraction));
}

// --- Media -------------------------------------------------------------------------

bool ActorAction::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    if (action != EnterOnScene || actorName.isEmpty())
        return false;
    return findMissingActorFile(actorName, directory, second);
}

void ActorAction::collectMedia(KDirectory& from, KDirectory& to)
{
    if (action != EnterOnScene || actorName.isEmpty())
        return;
    collectActorFile(actorName, from, to);
}

bool ActorAction::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!replaceActorMedia(getTape(), actorName, oldFile, newFile))
        return false;
    noteChanged();
    return true;
}

void ActorAction::addMediaName(KStringBag& names) { addActorMediaNames(getTape(), actorName, names); }

bool ActorAction::usesMediaNamed(const KString& name) { return actorUsesMediaNamed(getTape(), actorName, name); }
