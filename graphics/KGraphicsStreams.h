#pragma once

#include "kernel/KThing.h"

#include <functional>

// The class stream frames that the graphics records share. Every record is
// read defensively: a section whose payload does not fit its length, or a
// nested record of another class, counts as damage, and the stream is left
// aligned at the end of the section. Readers gather the payload in locals
// and take it over only when the whole record was read.
namespace KGraphicsStreams {

enum class SectionResult : int32_t {
    Read = 0,    // the payload was consumed
    Failed = 1,  // the payload was damaged
    Unknown = 2, // a section this reader does not know: skipped
};

// Writes the frame of `cls` with one section, number 1, filled by `body`.
void writeMainSection(KFile& file, const KClass* cls, const std::function<void()>& body);

// Reads a frame of `cls`, handing each section id to `body`. Afterwards the
// position is moved to the section's end; a payload that ran past it marks
// the file as damaged. True when section 1 was read whole and nothing
// failed.
bool readSections(KFile& file, const KClass* cls, const std::function<SectionResult(int32_t id)>& body);

// A frame whose section 1 is read by `body`, which answers whether the
// payload was whole; other sections are skipped.
bool readMainSection(KFile& file, const KClass* cls, const std::function<bool()>& body);

// Reads the record of a class of another subsystem (a KString, a KFlagSet)
// inside a payload. True when it was read whole: no error in the file and
// no stream dropped for a class id that did not match.
bool readNested(KFile& file, KThing& object);

} // namespace KGraphicsStreams
