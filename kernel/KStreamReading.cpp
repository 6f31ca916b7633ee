#include "kernel/KStreamReading.h"

#include "kernel/KThingPtr.h"
#include "kernel/KUnknownObject.h"

namespace KStreamReading {

KClassReader::ObjectResult readObject(KFile& file, KThingPtr& out, const KSourceLocation& where)
{
    bool keepUnknown = KUnknownObject::isKept();
    int32_t tagPosition = keepUnknown ? file.getPosition() : 0;
    KClassReader::ObjectResult result = KClassReader::readObject(file, out, nullptr, where);
    if (result == KClassReader::ReadFailed && !file.getError())
        file.setError(KError::CouldNotReadFile);
    bool unknown = result == KClassReader::NulledObject || result == KClassReader::DroppedObject;
    if (!keepUnknown || !unknown)
        return result;
    // The frame is already skipped; the class id is read again from its tag.
    int32_t end = file.getPosition();
    file.setPosition(tagPosition);
    int32_t classID = file.readLong();
    file.setPosition(end);
    out = new KUnknownObject(classID);
    return KClassReader::ObjectRead;
}

} // namespace KStreamReading
