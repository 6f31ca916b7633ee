#include "kernel/KDiskObjectReference.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDiskObjectStreams.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/native/KNativeFiles.h"

K_DEFINE_CLASS(KDiskObjectReference, KThing)

KDiskObjectReference::KDiskObjectReference() = default;

KDiskObjectReference::KDiskObjectReference(const KPath& newPath)
{
    // Virtual calls in a constructor stay in this class; the subclasses set
    // their own kind in theirs.
    KDiskObjectReference::setPath(newPath);
}

KDiskObjectReference::KDiskObjectReference(const KDiskObjectReference& other)
    : KThing(other)
    , valid(other.valid)
    , creationDate(other.creationDate)
    , modificationDate(other.modificationDate)
    , creationTime(other.creationTime)
    , modificationTime(other.modificationTime)
    , path(other.path)
    , kind(other.kind)
{
}

KDiskObjectReference::~KDiskObjectReference() = default;

KDiskObjectReference& KDiskObjectReference::operator=(const KDiskObjectReference& other)
{
    if (this != &other) {
        valid = other.valid;
        creationDate = other.creationDate;
        modificationDate = other.modificationDate;
        creationTime = other.creationTime;
        modificationTime = other.modificationTime;
        path = other.path;
        kind = other.kind;
    }
    return *this;
}

KThing* KDiskObjectReference::deepCopy() const { return new KDiskObjectReference(*this); }

void KDiskObjectReference::notImplemented(const KSourceLocation& where)
{
    KErrorHandler::notice("Not Yet Implemented!", where);
}

KString KDiskObjectReference::getNativeText() const
{
    KString text = path.getNativeText();
    if (text.getLength() > 1 && text.charAt(text.getLength() - 1) == '/')
        text.setText(text.getText(), text.getLength() - 1);
    return text;
}

KString KDiskObjectReference::getObjectName() const
{
    KString name;
    path.getObjectName(name);
    return name;
}

void KDiskObjectReference::refresh()
{
    KNativeFileInfo info;
    KString text = getNativeText();
    valid = !text.isEmpty() && knsFileInfo(text, info) ? 1 : 0;
    const KNativeFileStamp& c = info.created;
    const KNativeFileStamp& m = info.modified;
    creationDate.setDate(c.year, c.month, c.day);
    creationTime.setTime(c.hour, c.minute, c.second);
    modificationDate.setDate(m.year, m.month, m.day);
    modificationTime.setTime(m.hour, m.minute, m.second);
}

void KDiskObjectReference::refreshType() { }

void KDiskObjectReference::setPath(const KPath& newPath)
{
    path = newPath;
    kind = int16_t(path.getKind());
    refresh();
}

bool KDiskObjectReference::doesExist() const
{
    KString text = getNativeText();
    if (text.isEmpty())
        return false;
    KNativeFileInfo info;
    return knsFileInfo(text, info);
}

bool KDiskObjectReference::remove()
{
    notImplemented();
    return false;
}

bool KDiskObjectReference::rename(const KString&)
{
    notImplemented();
    return false;
}

bool KDiskObjectReference::copy(const KDirectory&)
{
    notImplemented();
    return false;
}

bool KDiskObjectReference::copyAndRename(const KDirectory&, const KString&)
{
    notImplemented();
    return false;
}

bool KDiskObjectReference::copyAndRename(const KPath&)
{
    notImplemented();
    return false;
}

void KDiskObjectReference::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeShort(kind);
    KDiskObjectStreams::writeDate(file, creationDate);
    KDiskObjectStreams::writeDate(file, modificationDate);
    KDiskObjectStreams::writeTime(file, creationTime);
    KDiskObjectStreams::writeTime(file, modificationTime);
    path.writeToFile(file, version);
    writer.end();
}

void KDiskObjectReference::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        kind = file.readShort();
        KDiskObjectStreams::readDate(file, creationDate);
        KDiskObjectStreams::readDate(file, modificationDate);
        KDiskObjectStreams::readTime(file, creationTime);
        KDiskObjectStreams::readTime(file, modificationTime);
        path.readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
}

void KDiskObjectReference::describe(KJsonWriter& out) const
{
    out.member("kind", kind);
    out.objectMember("creationDate", &creationDate);
    out.objectMember("modificationDate", &modificationDate);
    out.objectMember("creationTime", &creationTime);
    out.objectMember("modificationTime", &modificationTime);
    out.objectMember("path", &path);
}
