#include "app/SceneTapePage.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "kernel/KClass.h"
#include "kernel/KNamedBag.h"
#include "kmultimedia/KSpriteLayer.h"
#include "kmultimedia/KSpriteSystem.h"
#include "kmultimedia/StylusSpriteSystem.h"
#include "tape/Tape.h"

#include <algorithm>

K_DEFINE_CLASS(SceneTapePage, TapePage)

SceneTapePage::SceneTapePage()
    : SceneTapePage(KGraphicSize(kDefaultWidth, kDefaultHeight))
{
}

// The scene's frames land in an image of the page's size, which stands
// where a window would.
SceneTapePage::SceneTapePage(const KGraphicSize& size)
    : scene(new StylusSpriteSystem())
    , frameImage(new KImage(size))
{
    scene->setPageSize(size);
    scene->attachDevice(frameImage->getDevice());
}

SceneTapePage::SceneTapePage(StylusSpriteSystem& windowScene)
    : scene(windowScene)
{
}

SceneTapePage::~SceneTapePage()
{
    if (frameImage)
        scene->detachDevice();
}

// --- The page ----------------------------------------------------------------------

KImage& SceneTapePage::getPageImage()
{
    if (KImage* page = scene->getPageImage())
        return *page;
    KGraphicSize size = getPageSize();
    if (!sparePage || sparePage->getSize() != size)
        sparePage = new KImage(size);
    return *sparePage;
}

KGraphicDevice& SceneTapePage::getPageDevice() { return getPageImage().getDevice(); }

KGraphicSize SceneTapePage::getPageSize() { return scene->getPageSize(); }

// Each refresh puts the page back under the sprites at once, which a
// rebuild would do again for every element drawn.
void SceneTapePage::refresh(const KGraphicRectangle& changed)
{
    if (!isRebuilding())
        scene->refresh(changed);
}

void SceneTapePage::refreshSpriteLayer() { scene->redrawAll(); }

void SceneTapePage::drawFrame() { scene->drawFrame(); }

void SceneTapePage::composeInto(KImage& image)
{
    scene->redrawAll();
    KImage* composed = scene->getSpriteSystem().getOffscreen();
    if (!composed)
        return;
    if (image.getSize() != composed->getSize())
        image.setSize(composed->getSize());
    composed->drawAt(image.getDevice(), KGraphicPoint(0, 0));
}

// --- Single actors -----------------------------------------------------------------

Actor* SceneTapePage::findActor(Tape& tape, const KString& name) { return dynamic_cast<Actor*>(tape.getActor(name)); }

template<class Visit>
void SceneTapePage::forEachActor(Tape& tape, Visit&& visit)
{
    KNamedBag& actors = tape.getActors();
    for (int32_t i = 0; i < actors.getSize(); ++i) {
        KString* name = actors.getKeyAt(i);
        auto* actor = dynamic_cast<Actor*>(actors.getObjectAt(i));
        if (!name || !actor)
            continue;
        ActorPtr held(actor);
        visit(KString(*name), *held);
    }
}

bool SceneTapePage::isOnScene(const Actor& actor) const
{
    return actor.getLayer() == &scene->getActorLayer() && actor.isVisible();
}

void SceneTapePage::putOnScene(Actor& actor)
{
    KSpriteLayer& layer = scene->getActorLayer();
    if (actor.getLayer() != &layer) {
        if (KSpriteLayer* other = actor.getLayer())
            other->removeSprite(actor);
        scene->addActor(actor);
    }
    actor.show();
}

// The place where the actor was drawn is wiped by the scene's next frame.
void SceneTapePage::takeOffScene(Actor& actor)
{
    actor.stop();
    actor.hide();
    if (actor.getLayer() == &scene->getActorLayer())
        scene->removeActor(actor);
}

bool SceneTapePage::putActorOnScene(Tape& tape, const KString& name)
{
    Actor* actor = findActor(tape, name);
    if (!actor)
        return false;
    putOnScene(*actor);
    return true;
}

void SceneTapePage::removeActorFromScene(Tape& tape, const KString& name)
{
    if (Actor* actor = findActor(tape, name))
        takeOffScene(*actor);
}

bool SceneTapePage::isActorOnScene(Tape& tape, const KString& name)
{
    Actor* actor = findActor(tape, name);
    return actor && isOnScene(*actor);
}

// --- All the tape's actors -----------------------------------------------------------

void SceneTapePage::stopActors(Tape& tape)
{
    forEachActor(tape, [this](const KString&, Actor& actor) { takeOffScene(actor); });
}

void SceneTapePage::resetActors(Tape& tape)
{
    forEachActor(tape, [this](const KString&, Actor& actor) {
        takeOffScene(actor);
        actor.reset();
    });
}

void SceneTapePage::releaseActors(Tape& tape) { stopActors(tape); }

// There is no undo: the scene at a position is the walk forward from the
// last transition that cleared it, with every movement only noted on the
// way, so that each actor renders at most its final movement, and none at
// all when that one is current already.
void SceneTapePage::synchroniseActors(Tape& tape, int32_t first, int32_t limit)
{
    KNamedBag movements;
    replayActorElements(tape, first, limit, movements);
    settleActors(tape, movements);
}

void SceneTapePage::replayActorElements(Tape& tape, int32_t first, int32_t limit, KNamedBag& movements)
{
    for (int32_t i = std::max(first, 0); i < limit && i < tape.getCount(); ++i) {
        TapeObject* element = tape.getAt(i);
        if (!element || !element->isActive())
            continue;
        TapeObjectPtr held(element);
        if (element->getType() == ActorMotionType) {
            element->drawOnPage();
            continue;
        }
        auto* action = dynamic_cast<ActorAction*>(element);
        if (!action)
            continue;
        KString name = action->getActorName();
        KString noted;
        if (auto* known = dynamic_cast<KString*>(movements.findNamedObject(name)))
            noted = *known;
        action->applyOnRebuild(noted);
        if (!noted.isEmpty())
            movements.add(name, KStringPtr(new KString(noted)), true);
        if (action->getAction() == ActorAction::ExitFromScene)
            movements.removeKey(name);
    }
}

void SceneTapePage::settleActors(Tape& tape, const KNamedBag& movements)
{
    forEachActor(tape, [&](const KString& name, Actor& actor) {
        auto* movement = dynamic_cast<KString*>(movements.findNamedObject(name));
        if (!movement || !actor.hasSequence(*movement)) {
            takeOffScene(actor);
            actor.reset();
            return;
        }
        actor.setMovement(*movement);
        if (!isOnScene(actor))
            putOnScene(actor);
    });
}
