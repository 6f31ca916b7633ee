#include "app/PreviewActorStage.h"
#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorMotion.h"
#include "app/actors/ActorSequence.h"
#include "graphics/KGraphicDevice.h"
#include "tape/Tape.h"
#include "tape/WipeOut.h"
#include <algorithm>

void PreviewActorStage::clear() { entries.clear(); }

void PreviewActorStage::apply(Tape& tape, TapeObject& element)
{
    if (auto* transition = dynamic_cast<WipeOut*>(&element)) {
        if (transition->getRemovesActors())
            clear();
        return;
    }
    if (auto* action = dynamic_cast<ActorAction*>(&element))
        applyAction(tape, *action);
    else if (auto* motion = dynamic_cast<ActorMotion*>(&element))
        applyMotion(*motion);
}

PreviewActorStage::Entry* PreviewActorStage::find(const KString& name)
{
    auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == name; });
    return found == entries.end() ? nullptr : &*found;
}

void PreviewActorStage::remove(const KString& name)
{
    entries.erase(std::remove_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == name; }),
                  entries.end());
}

// An actor that enters without the movement asked for stays off the stage,
// as on the scene.
void PreviewActorStage::applyAction(Tape& tape, const ActorAction& action)
{
    auto* actor = dynamic_cast<Actor*>(tape.getActor(action.getActorName()));
    if (!actor)
        return;
    const KString& name = action.getActorName();
    Entry* entry = find(name);
    switch (action.getAction()) {
    case ActorAction::EnterOnScene:
        if (!actor->hasSequence(action.getMovementName()))
            return;
        if (!entry) {
            entries.push_back(Entry { name, {}, {}, {} });
            entry = &entries.back();
        }
        entry->movement = action.getMovementName();
        entry->position = KAnimationPoint(action.getPosition());
        entry->scale = action.getScale();
        return;
    case ActorAction::ExitFromScene:
        remove(name);
        return;
    case ActorAction::MoveResize:
    case ActorAction::JumpToPosition:
        if (entry) {
            entry->position = KAnimationPoint(action.getPosition());
            entry->scale = action.getScale();
        }
        return;
    case ActorAction::ChangeOrder:
        if (entry)
            changeOrder(name, action.getOrderChange());
        return;
    case ActorAction::ChangeMovement:
        if (entry && actor->hasSequence(action.getMovementName()))
            entry->movement = action.getMovementName();
        return;
    default:
        return;
    }
}

void PreviewActorStage::applyMotion(const ActorMotion& motion)
{
    Entry* entry = find(motion.getActorName());
    if (!entry || motion.getPointCount() < 2)
        return;
    KGraphicPoint last = motion.getLastPoint();
    entry->position = KAnimationPoint(float(last.x), float(last.y));
}

// Entries are kept back to front.
void PreviewActorStage::changeOrder(const KString& name, int32_t change)
{
    auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == name; });
    size_t index = size_t(found - entries.begin());
    Entry moved = *found;
    entries.erase(found);
    size_t target = index;
    switch (change) {
    case ActorAction::BringToFront:
        target = entries.size();
        break;
    case ActorAction::BringOneForward:
        target = std::min(index + 1, entries.size());
        break;
    case ActorAction::BringOneBackward:
        target = index > 0 ? index - 1 : 0;
        break;
    case ActorAction::BringToBack:
        target = 0;
        break;
    default:
        break;
    }
    entries.insert(entries.begin() + std::ptrdiff_t(target), moved);
}

std::vector<KString> PreviewActorStage::namesOnStage() const
{
    std::vector<KString> names;
    for (const Entry& entry : entries)
        names.push_back(entry.name);
    return names;
}

void PreviewActorStage::drawOn(Tape& tape, KGraphicDevice& device, const KGraphicRectangle&)
{
    for (const Entry& entry : entries) {
        if (auto* actor = dynamic_cast<Actor*>(tape.getActor(entry.name)))
            drawActor(*actor, entry, device);
    }
}

// The frame's elements go from the actor's bounds (the union over all its
// frames, as the scene's sprite takes them) to where the sprite stands.
void PreviewActorStage::drawActor(Actor& actor, const Entry& entry, KGraphicDevice& device)
{
    if (!actor.hasSequence(entry.movement))
        return;
    ActorSequence& sequence = actor.getSequence(entry.movement);
    if (sequence.getFrameCount() == 0)
        return;
    bool reverse = sequence.getPlayType() == Actor::OnceReverse;
    Tape* frame = sequence.getFrame(reverse ? sequence.getFrameCount() - 1 : 0);
    KGraphicRectangle bounds(0, 0, 0, 0);
    for (int32_t s = 0; s < actor.getSequenceCount(); ++s) {
        ActorSequence* each = actor.getSequenceAt(s);
        for (int32_t f = 0; each && f < each->getFrameCount(); ++f) {
            Tape* tape = each->getFrame(f);
            for (int32_t e = 0; tape && e < tape->getCount(); ++e) {
                if (TapeObject* element = tape->getAt(e))
                    bounds.uniteWith(element->getBounds());
            }
        }
    }
    if (!frame || bounds.getWidth() <= 0 || bounds.getHeight() <= 0)
        return;
    const KAnimationVector& origin = actor.getOrigin();
    const KAnimationVector& s = entry.scale;
    KGraphicRectangle target(
        int16_t(int32_t(entry.position.x - origin.x * s.x)), int16_t(int32_t(entry.position.y - origin.y * s.y)),
        int16_t(int32_t(float(bounds.getWidth()) * s.x)), int16_t(int32_t(float(bounds.getHeight()) * s.y)));
    for (int32_t e = 0; e < frame->getCount(); ++e) {
        TapeObject* element = frame->getAt(e);
        if (element && element->isActive())
            element->drawOn(device, bounds, target);
    }
}
