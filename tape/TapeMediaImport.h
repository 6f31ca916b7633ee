#pragma once

#include "kernel/KFileReference.h"
#include "tape/TapeForward.h"

// The files that image and movie elements refer to. A project keeps its
// media in its "Media" folder and an element stores a reference to its file.
// While the tape knows that folder, the element looks for its file there by
// name alone, so a project folder can be moved as a whole and a document
// never reaches outside it; without the folder it uses the path it stored.

// Copies `source` into the media folder, which is created when missing,
// under a name of at most kMaxMediaNameLength characters that keeps the
// extension and takes a number when the name is taken. A file already there
// with the same bytes is reused instead of copied again. `imported` names
// the file in the folder. False, with nothing copied, on any failure.
bool importMediaFile(const KFileReference& source, KDirectory& mediaDirectory, KFileReference& imported);
// The same; `reused` tells whether the folder held the same file already.
bool importMediaFile(const KFileReference& source, KDirectory& mediaDirectory, KFileReference& imported, bool& reused);

constexpr int32_t kMaxMediaNameLength = 26;

// Where the element's file is now: inside the tape's media folder by name
// when the tape has one, else the stored path. An empty reference gives an
// empty path.
KPath tapeMediaPath(const Tape* tape, const KFileReference& file);
bool tapeMediaExists(const Tape* tape, const KFileReference& file);

// Reads a file reference record from a document and checks its name: a
// name that would lead out of the folder it is looked up in is reported
// and the reference is emptied.
void tapeReadMediaReference(KFile& file, KFileReference& reference);

// Looks for a missing file by its name in `directory`, then in `second`,
// and else asks the user through the tape host. A file found outside the
// tape's media folder is imported into it. `file` is updated when a new
// place was found; `changed` tells whether it was. True when the user gave
// up.
bool tapeFindMissingMedia(KFileReference& file, const Tape* tape, KDirectory& directory, KDirectory* second,
                          bool& changed);

// True when the element's reference names `file`, by the stored path or by
// where the file is found now.
bool tapeMediaRefersTo(const Tape* tape, const KFileReference& reference, const KFileReference& file);

// Hands the file to the publisher; true when the publisher moved the
// reference to a new place.
bool tapeCollectMedia(KFileReference& file, const Tape* tape, KDirectory& from, KDirectory& to);

// Adds the file's name to the list unless it is empty or listed already.
void tapeAddMediaName(const KFileReference& file, KStringBag& names);
