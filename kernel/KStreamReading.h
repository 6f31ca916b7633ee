#pragma once

#include "kernel/KClassReader.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"

#include "kernel/KSourceLocation.h"
#include <utility>

// Reading steps shared by the kernel's persistent classes.
namespace KStreamReading {

// Reads the class stream of `cls` whose payload is section 1: `body` is
// called with the payload's length (see KClassReader::readSections).
template<class Body>
void readMainSection(KFile& file, const KClass* cls, Body&& body)
{
    KClassReader::readSections(file, cls, { { 1, std::forward<Body>(body) } });
}

// KClassReader::readObject; while KUnknownObject::isKept(), an object of an
// unknown class comes back as a placeholder (ObjectRead) instead of a null
// or dropped slot. A failure that left no error in the file (policy 2 under
// a forwarding error handler) stores code 38, so that reading stops.
KClassReader::ObjectResult readObject(KFile& file, KThingPtr& out,
                                      const KSourceLocation& where = KSourceLocation::current());

} // namespace KStreamReading
