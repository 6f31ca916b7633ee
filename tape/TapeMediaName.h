#pragma once

#include "kernel/KForward.h"

// A media file named in a document lives in the project's own folders, so a
// name read from a file must not lead anywhere else. A name that carries a
// path separator, a drive colon or a ".." component is refused: the element
// keeps an empty name (it then draws as a missing file) and the user is
// told once per name. The rest of the document loads as usual.

// True when the name stays inside the folder it is looked up in.
bool tapeIsSafeMediaName(const KString& name);

// Checks a name just read from a document. A refused name is reported
// through the tape host and emptied; the result tells whether it was kept.
bool tapeAcceptMediaName(KString& name);
