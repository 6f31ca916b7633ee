#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KAnimationPoint.h"
#include "kmultimedia/KAnimationVector.h"
#include "tape/TapePreviewStage.h"
#include <vector>

class ActorAction;
class ActorMotion;
class Actor;

// The actors of the thumbnails: where each stands, how large, in which
// movement and in which order, followed element by element as the scene
// would follow them at the end of each element, but kept apart from the
// live actors. An actor shows the first frame of its movement (the last for
// a movement played backwards once), drawn from the frame's own elements.
class PreviewActorStage : public TapePreviewStage {
public:
    void clear() override;
    void apply(Tape& tape, TapeObject& element) override;
    void drawOn(Tape& tape, KGraphicDevice& device, const KGraphicRectangle& page) override;

    // The names on the stage, back to front.
    std::vector<KString> namesOnStage() const;

private:
    struct Entry {
        KString name;
        KString movement;
        KAnimationPoint position;
        KAnimationVector scale { 1.0f, 1.0f };
    };

    void applyAction(Tape& tape, const ActorAction& action);
    void applyMotion(const ActorMotion& motion);
    Entry* find(const KString& name);
    void remove(const KString& name);
    void changeOrder(const KString& name, int32_t change);
    static void drawActor(Actor& actor, const Entry& entry, KGraphicDevice& device);

    std::vector<Entry> entries;
};
