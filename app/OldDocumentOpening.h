#pragma once

#include "kernel/KFileReference.h"

// Opening a document of the program's older generation: after the user
// agrees, names the new project and says where the old one was made, it is
// converted into a new project, whose document is then opened as any other.
// Anything that goes wrong is told; nothing is left half made.
namespace OldDocumentOpening {

// Whether the file is an old document, by its name or its content.
bool isOldDocument(const KFileReference& file);
// True with the new project's document in `converted`.
bool convert(const KFileReference& old, KFileReference& converted);

} // namespace OldDocumentOpening
