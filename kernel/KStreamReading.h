#pragma once

#include "kernel/KClassReader.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"

// Reading steps shared by the kernel's persistent classes.
namespace KStreamReading {

// After a section's payload was read: a payload read only in part (a later
// version added fields) is skipped and counted as ignored data; reading
// beyond the section's end means the stream is damaged.
inline void finishSection(KFile& file, KClassReader& reader, int32_t sectionEnd)
{
    if (file.getError())
        return;
    int32_t position = file.getPosition();
    if (position > sectionEnd)
        file.setError(KError::CouldNotReadFile);
    else if (position < sectionEnd)
        reader.skipSection();
}

// Reads the class stream of `cls` whose payload is section 1: `body` is
// called with the payload's length for the first section 1, every other
// section is skipped by its length.
template<class Body>
void readMainSection(KFile& file, const KClass* cls, Body&& body)
{
    KClassReader reader;
    int32_t version = 0;
    int32_t sections = 0;
    reader.begin(file, cls, &version, &sections);
    bool done = false;
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        if (id != 1 || done) {
            reader.skipSection();
            continue;
        }
        int32_t payload = reader.getSectionSize();
        int32_t end = file.getPosition() + payload;
        body(payload);
        done = true;
        finishSection(file, reader, end);
    }
    reader.end();
}

// KClassReader::readObject; while KUnknownObject::isKept(), an object of an
// unknown class comes back as a placeholder (ObjectRead) instead of a null
// or dropped slot. A failure that left no error in the file (policy 2 under
// a forwarding error handler) stores code 38, so that reading stops.
KClassReader::ObjectResult readObject(KFile& file, KThingPtr& out, const char* location);

} // namespace KStreamReading
