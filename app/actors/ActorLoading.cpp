#include "app/actors/ActorLoading.h"

#include "app/actors/Actor.h"
#include "app/actors/ActorAction.h"
#include "app/actors/ActorMotion.h"
#include "kernel/KDirectory.h"
#include "kernel/KStringBag.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"

#include <set>
#include <string>

const char* const kActorFileExtension = "ACT";

KString actorFileName(const KString& actorName) { return actorName + "." + kActorFileExtension; }

KFileReference actorFileIn(const KDirectory& directory, const KString& actorName)
{
    return KFileReference(directory.getPath().getChildFile(actorFileName(actorName)));
}

namespace {

// The actor's name as its elements give it; empty for other elements.
KString actorNameOf(const TapeObject& element)
{
    if (auto* action = dynamic_cast<const ActorAction*>(&element))
        return action->getActorName();
    if (auto* motion = dynamic_cast<const ActorMotion*>(&element))
        return motion->getActorName();
    return KString();
}

Actor* actorOf(Tape* tape, const KString& actorName)
{
    return tape ? dynamic_cast<Actor*>(tape->getActor(actorName)) : nullptr;
}

void reportMissingActor(const KString& actorName)
{
    // TRANSLATORS: %1 is the actor's file name.
    KString text = tapeTranslate("The actor file is missing: %1").withArguments({ actorFileName(actorName) });
    TapeHost::get().alert(tapeTranslate("Error while reading file"), text);
}

// Reads one actor file; null when it is missing or is no actor file. The
// user hears of either, a damaged file from the actor itself.
ActorPtr openActor(KDirectory& directory, const KString& actorName)
{
    KFileReference file = actorFileIn(directory, actorName);
    if (!file.doesExist()) {
        reportMissingActor(actorName);
        return ActorPtr();
    }
    ActorPtr actor(new Actor());
    bool checkMedia = false;
    if (!actor->open(file, checkMedia))
        return ActorPtr();
    return actor;
}

bool sameText(const KString& a, const KString& b) { return a.getUpper() == b.getUpper(); }

// Whether the reference names this actor's file.
bool namesActorFile(const KFileReference& file, const KString& actorName)
{
    const KPath& path = file.getPath();
    return path.getName() == actorName && sameText(path.getExtension(), KString(kActorFileExtension));
}

// Saves the actor over its file in the actors folder of the tape's project;
// a tape without a project has no place to save it to.
void saveActorInPlace(Tape& tape, const KString& actorName, Actor& actor)
{
    auto* project = dynamic_cast<StylusProject*>(tape.getOwnerProject());
    KDirectory* folder = project ? project->getActorsDirectory() : nullptr;
    if (!folder)
        return;
    KFileReference place = actorFileIn(*folder, actorName);
    actor.save(place);
}

// The tape's actor follows its file to the new name, so that the elements
// renamed after it still find it.
void renameTapeActor(Tape* tape, const KString& oldName, const KString& newName)
{
    if (!tape || !tape->hasActor(oldName) || tape->hasActor(newName))
        return;
    KThingPtr actor(tape->getActor(oldName));
    tape->releaseActor(oldName);
    tape->getActors().add(newName, actor);
}

} // namespace

int32_t loadTapeActors(Tape& tape, KDirectory& actorsDirectory)
{
    std::set<std::string> tried;
    int32_t loaded = 0;
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        TapeObject* element = tape.getAt(i);
        if (!element)
            continue;
        KString name = actorNameOf(*element);
        if (name.isEmpty() || tape.hasActor(name) || !tried.insert(name.c_str()).second)
            continue;
        ActorPtr actor = openActor(actorsDirectory, name);
        if (!actor)
            continue;
        tape.getActors().add(name, *actor);
        ++loaded;
    }
    return loaded;
}

bool findMissingActorFile(const KString& actorName, KDirectory& directory, KDirectory* second)
{
    KFileReference file = actorFileIn(directory, actorName);
    if (file.doesExist())
        return false;
    if (second && actorFileIn(*second, actorName).doesExist())
        return false;
    if (TapeHost::get().findMissingFile(file, directory, second))
        return true;
    // The user showed where the file went: it is taken into the folder
    // under the name the tape knows it by.
    if (file.doesExist() && file.getPath() != actorFileIn(directory, actorName).getPath())
        file.copyAndRename(directory, actorFileName(actorName));
    return false;
}

void collectActorFile(const KString& actorName, KDirectory& from, KDirectory& to)
{
    findMissingActorFile(actorName, from, nullptr);
    KFileReference source = actorFileIn(from, actorName);
    if (source.doesExist() && !actorFileIn(to, actorName).doesExist())
        source.copy(to);
}

bool replaceActorMedia(Tape* tape, KString& actorName, const KFileReference& oldFile, const KFileReference& newFile)
{
    bool changed = false;
    if (Actor* actor = actorOf(tape, actorName); actor && actor->replaceMedia(oldFile, newFile)) {
        saveActorInPlace(*tape, actorName, *actor);
        changed = true;
    }
    if (!actorName.isEmpty() && namesActorFile(oldFile, actorName)) {
        KString newName = newFile.getPath().getName();
        renameTapeActor(tape, actorName, newName);
        actorName = newName;
        changed = true;
    }
    return changed;
}

void addActorMediaNames(Tape* tape, const KString& actorName, KStringBag& names)
{
    if (actorName.isEmpty())
        return;
    KString file = actorFileName(actorName);
    if (!names.has(file))
        names.add(file);
    if (Actor* actor = actorOf(tape, actorName))
        actor->addMediaName(names);
}

bool actorUsesMediaNamed(Tape* tape, const KString& actorName, const KString& name)
{
    if (actorName.isEmpty())
        return false;
    if (sameText(actorFileName(actorName), name))
        return true;
    Actor* actor = actorOf(tape, actorName);
    return actor && actor->usesMediaNamed(name);
}
