#include "kernel/KClassReader.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KThingPtr.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int32_t kSectionHeadSize = 8;

// Classes whose objects can come out of a stream: roots registered by name
// only make bare KThing objects, which cannot read themselves.
bool isCreatable(const KClass* cls) { return cls->getCreateProc() && cls->getCreateProc() != &KThing::create; }

class ObjectDepthGuard {
public:
    ObjectDepthGuard() { KClassStreamState::enterObject(); }
    ~ObjectDepthGuard() { KClassStreamState::leaveObject(); }
    ObjectDepthGuard(const ObjectDepthGuard&) = delete;
    ObjectDepthGuard& operator=(const ObjectDepthGuard&) = delete;
};

KClassReader::ObjectResult skipUnknownObject(KFile& file, const KSourceLocation& where)
{
    switch (KClassStreamState::unknownClassPolicy()) {
    case KClassStreamState::KeepNullSlot:
        if (!KClassReader::skipClass(file))
            return KClassReader::ReadFailed;
        KClassStreamState::countNulledObject();
        return KClassReader::NulledObject;
    case KClassStreamState::FatalError:
        KErrorHandler::raiseError(KError::ClassNotRegistered, where);
        return KClassReader::ReadFailed;
    default:
        if (!KClassReader::skipClass(file))
            return KClassReader::ReadFailed;
        KClassStreamState::countDroppedObject();
        return KClassReader::DroppedObject;
    }
}

} // namespace

K_DEFINE_CLASS(KClassReader, KThing)

KClassReader::~KClassReader()
{
    if (file)
        KErrorHandler::raiseError(KError::FileIsOpen);
}

void KClassReader::fail(int32_t code)
{
    file->setError(code);
    sectionsLeft = 0;
}

void KClassReader::countIgnoredData()
{
    if (ignoredData)
        return;
    ignoredData = true;
    KClassStreamState::countSkippedClassData();
}

bool KClassReader::begin(KFile& source, const KClass* cls, int32_t* version, int32_t* sections)
{
    if (!cls) {
        KErrorHandler::raiseError(KError::PointerNull);
        file = &source;
        sectionsLeft = 0;
        if (version)
            *version = 0;
        if (sections)
            *sections = 0;
        return false;
    }
    return begin(source, cls->getClassID(), version, sections);
}

bool KClassReader::begin(KFile& source, int32_t classID, int32_t* version, int32_t* sections)
{
    file = &source;
    bodySize = 0;
    sectionsLeft = 0;
    sectionIndex = 0;
    sectionLength = 0;
    sectionID = -1;
    ignoredData = false;
    if (sections)
        *sections = 0;

    int32_t id = file->readLong();
    int32_t classVersion = file->readLong();
    if (version)
        *version = classVersion;
    if (file->getError())
        return false;
    if (id != classID) {
        if (KClassStreamState::unknownClassPolicy() == KClassStreamState::FatalError) {
            KErrorHandler::raiseError(KError::ClassIDMismatch);
        } else {
            KClassStreamState::countDroppedObject();
            return false;
        }
    }

    bodySize = file->readLong();
    int32_t count = file->readLong();
    bodyStart = file->getPosition();
    if (file->getError())
        return false;
    if (bodySize < 0 || count < 0 || count > bodySize / kSectionHeadSize) {
        fail(KError::CouldNotReadFile);
        return false;
    }
    if (bodySize > file->bytesLeft()) {
        fail(KError::EndOfFile);
        return false;
    }
    sectionsLeft = count;
    if (sections)
        *sections = count;
    return true;
}

bool KClassReader::nextSection(int32_t* id)
{
    *id = -1;
    if (!file) {
        KErrorHandler::raiseError(KError::PointerNull);
        return false;
    }
    if (sectionsLeft <= 0 || file->getError()) {
        sectionsLeft = 0;
        sectionID = -1;
        return false;
    }
    sectionStart = file->getPosition();
    int32_t readID = file->readLong();
    int32_t length = file->readLong();
    if (file->getError()) {
        sectionsLeft = 0;
        return false;
    }
    int32_t roomInBody = bodyStart + bodySize - sectionStart;
    if (length < kSectionHeadSize || length > roomInBody) {
        fail(KError::CouldNotReadFile);
        sectionID = -1;
        return false;
    }
    sectionLength = length;
    sectionID = readID;
    --sectionsLeft;
    ++sectionIndex;
    *id = readID;
    return true;
}

int32_t KClassReader::sectionBytesLeft() const
{
    if (!file || sectionID == -1)
        return 0;
    int32_t left = sectionStart + sectionLength - file->getPosition();
    return left > 0 ? left : 0;
}

void KClassReader::skipSection()
{
    if (!file) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    if (sectionID == -1)
        return;
    file->setPosition(sectionStart + sectionLength);
    countIgnoredData();
}

void KClassReader::end()
{
    if (!file) {
        KErrorHandler::raiseError(KError::PointerNull);
        return;
    }
    if (sectionsLeft > 0) {
        file->setPosition(bodyStart + bodySize);
        sectionsLeft = 0;
        countIgnoredData();
    }
    file = nullptr;
}

void KClassReader::finishSection(int32_t sectionEnd)
{
    if (file->getError())
        return;
    int32_t position = file->getPosition();
    if (position > sectionEnd)
        file->setError(KError::CouldNotReadFile);
    else if (position < sectionEnd)
        skipSection();
}

void KClassReader::readSections(KFile& file, const KClass* cls, std::span<const KnownSection> known)
{
    KClassReader reader;
    reader.begin(file, cls, nullptr, nullptr);
    // Section numbers already read; a repeated one is not read over the first.
    std::vector<int32_t> read;
    int32_t id = 0;
    while (reader.nextSection(&id)) {
        auto entry = std::find_if(known.begin(), known.end(), [&](const KnownSection& s) { return s.id == id; });
        int32_t payload = reader.getSectionSize();
        bool repeated = std::find(read.begin(), read.end(), id) != read.end();
        if (entry == known.end() || payload < entry->minimumSize || repeated) {
            reader.skipSection();
            continue;
        }
        read.push_back(id);
        int32_t end = file.getPosition() + payload;
        entry->read(payload);
        reader.finishSection(end);
    }
    reader.end();
}

bool KClassReader::skipClass(KFile& file)
{
    file.readLong();
    file.readLong();
    int32_t size = file.readLong();
    file.readLong();
    if (file.getError())
        return false;
    if (size < 0) {
        file.setError(KError::CouldNotReadFile);
        return false;
    }
    if (size > file.bytesLeft()) {
        file.setError(KError::EndOfFile);
        return false;
    }
    file.skip(size);
    return file.getError() == 0;
}

KClassReader::ObjectResult KClassReader::readObject(KFile& file, KThingPtr& out, const KClass* expected,
                                                    const KSourceLocation& where)
{
    out.clear();
    int32_t id = file.readLong();
    if (file.getError())
        return ReadFailed;
    if (id == 0)
        return NullObject;
    KClass* cls = nullptr;
    if (!KClass::hasClass(id, &cls) || !isCreatable(cls))
        return skipUnknownObject(file, where);
    bool fits = (!expected || cls->isEqualOrSubClass(expected)) && cls->isStreamable();
    if (!fits || KClassStreamState::objectDepth() >= KClassStreamState::kMaxObjectDepth) {
        file.setError(KError::CouldNotReadFile);
        return ReadFailed;
    }
    KThing* object = cls->createObject();
    if (!object) {
        file.setError(KError::CouldNotReadFile);
        return ReadFailed;
    }
    out = object;
    ObjectDepthGuard depth;
    object->readFromFile(file);
    return ObjectRead;
}
