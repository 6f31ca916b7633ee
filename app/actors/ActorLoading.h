#pragma once

#include "app/AppForward.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"

#include <cstdint>

// An actor lives in a file of its own, NAME.ACT, in the project's actors
// folder; a tape names it by NAME only and holds the actors themselves in
// its named bag. These are the file side of that arrangement, shared by the
// two actor elements and by whoever readies a tape for showing.

// The extension of an actor file.
extern const char* const kActorFileExtension;

// "NAME.ACT".
KString actorFileName(const KString& actorName);
// The actor's file in the folder.
KFileReference actorFileIn(const KDirectory& directory, const KString& actorName);

// Opens DIRECTORY/NAME.ACT for every distinct actor name of the tape's
// actor elements that the tape does not hold yet, and puts each actor in
// the tape's actors under its name. A missing or damaged file is skipped and
// reported once through the tape host. Returns the number loaded.
int32_t loadTapeActors(Tape& tape, KDirectory& actorsDirectory);

// --- What the two actor elements do with their actor's file ----------------

// Looks for NAME.ACT in `directory`, then in `second`; when it stands in
// neither, the user is asked where it went and a file found elsewhere is
// copied into `directory` under the actor's file name. True when the user
// gave up the search.
bool findMissingActorFile(const KString& actorName, KDirectory& directory, KDirectory* second);
// The search above in `from`, then a copy of the file into `to` unless it is
// there already.
void collectActorFile(const KString& actorName, KDirectory& from, KDirectory& to);
// The actor's own media changed from `oldFile` to `newFile`: the actor is
// saved again over its file, and `actorName` follows a renamed actor file.
// True when anything changed.
bool replaceActorMedia(Tape* tape, KString& actorName, const KFileReference& oldFile, const KFileReference& newFile);
// Adds NAME.ACT unless listed, then the media of the actor's frames.
void addActorMediaNames(Tape* tape, const KString& actorName, KStringBag& names);
// Whether `name` is the actor's file or a media file of its frames.
bool actorUsesMediaNamed(Tape* tape, const KString& actorName, const KString& name);
