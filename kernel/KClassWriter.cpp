#include "kernel/KClassWriter.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"

K_DEFINE_CLASS(KClassWriter, KThing)

KClassWriter::~KClassWriter()
{
    if (file)
        KErrorHandler::raiseError(KError::FileIsOpen);
}

void KClassWriter::begin(KFile& target, const KClass* cls)
{
    if (!cls) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    begin(target, cls->getClassID(), cls->getVersion());
}

void KClassWriter::begin(KFile& target, int32_t classID, int32_t classVersion)
{
    file = &target;
    version = classVersion;
    sectionCount = 0;
    currentSection = 0;
    file->writeLong(classID);
    file->writeLong(version);
    headerPos = file->getPosition();
    file->writeLong(0);
    file->writeLong(0);
}

void KClassWriter::patchLong(int32_t position, int32_t value)
{
    int32_t here = file->getPosition();
    file->setPosition(position);
    file->writeLong(value);
    file->setPosition(here);
}

void KClassWriter::patchSection()
{
    if (currentSection == 0)
        return;
    patchLong(sectionLengthPos, file->getPosition() - sectionStart);
}

void KClassWriter::newSection(int32_t id)
{
    if (!file) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    patchSection();
    sectionStart = file->getPosition();
    file->writeLong(id);
    sectionLengthPos = file->getPosition();
    file->writeLong(0);
    currentSection = id;
    ++sectionCount;
}

void KClassWriter::end()
{
    if (!file) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    patchSection();
    int32_t streamEnd = file->getPosition();
    // The body follows the size and count fields.
    int32_t bodyStart = headerPos + 8;
    file->setPosition(headerPos);
    file->writeLong(streamEnd - bodyStart);
    file->writeLong(sectionCount);
    file->setPosition(streamEnd);
    file = nullptr;
}

void KClassWriter::writeObject(KFile& file, KThing* object, const KSourceLocation& where)
{
    if (!object) {
        file.writeLong(0);
        return;
    }
    KClass* cls = object->getClass();
    if (!cls) {
        KErrorHandler::raiseError(KError::ClassNotRegistered, where);
        file.writeLong(0);
        return;
    }
    file.writeLong(cls->getClassID());
    object->writeToFile(file, 1);
}
