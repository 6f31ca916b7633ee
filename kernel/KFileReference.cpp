#include "kernel/KFileReference.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDirectory.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileTypeHandler.h"
#include "kernel/KJsonWriter.h"
#include "kernel/native/KNativeFiles.h"

namespace {

bool hasDot(const KString& text)
{
    for (int32_t i = 0; i < text.getLength(); ++i) {
        if (text.charAt(i) == '.')
            return true;
    }
    return false;
}

} // namespace

K_DEFINE_CLASS(KFileReference, KDiskObjectReference)

KFileReference::KFileReference() { setKind(KPath::FileKind); }

KFileReference::KFileReference(const KPath& path) { KFileReference::setPath(path); }

KFileReference::KFileReference(const KFileReference& other)
    : KDiskObjectReference(other)
    , fileTypeID(other.fileTypeID)
{
}

KFileReference::~KFileReference() = default;

KFileReference& KFileReference::operator=(const KFileReference& other)
{
    if (this != &other) {
        KDiskObjectReference::operator=(other);
        fileTypeID = other.fileTypeID;
    }
    return *this;
}

KThing* KFileReference::deepCopy() const { return new KFileReference(*this); }

void KFileReference::refresh()
{
    KDiskObjectReference::refresh();
    refreshType();
}

void KFileReference::refreshType()
{
    const KString& extension = getPath().getExtension();
    KFileType* type = nullptr;
    if (!extension.isEmpty() && KFileTypeHandler::hasAssociation(extension, &type))
        fileTypeID = type->getID();
    else
        fileTypeID = -1;
}

void KFileReference::setPath(const KPath& path)
{
    KDiskObjectReference::setPath(path);
    setKind(KPath::FileKind);
}

bool KFileReference::doesExist() const
{
    if (getPath().getName().isEmpty() && getPath().getExtension().isEmpty())
        return false;
    return KDiskObjectReference::doesExist();
}

bool KFileReference::remove()
{
    if (getPath().isEmpty()) {
        KErrorHandler::raiseError(KError::NoFilename);
        return false;
    }
    return knsFileRemove(getNativeText()) == 0;
}

bool KFileReference::rename(const KString& newName)
{
    KPath renamed(getPath());
    if (hasDot(newName))
        renamed.setNameAndExtension(newName);
    else
        renamed.setName(newName);
    KString from = getNativeText();
    KString to = renamed.getNativeText();
    if (from == to)
        return true;
    if (knsFileRename(from, to) != 0)
        return false;
    setPath(renamed);
    return true;
}

bool KFileReference::copyTo(const KPath& destination)
{
    if (destination == getPath() || !doesExist())
        return false;
    KDirectory folder(destination.getParent());
    if (!folder.doesExist())
        return false;
    bool accessDenied = false;
    int32_t code = knsFileCopy(getNativeText(), destination.getNativeText(), &accessDenied);
    // A refusal by permissions passes silently, as a locked file always has.
    if (code && !accessDenied)
        KErrorHandler::raiseError(KError::ErrorCopyingFile);
    return code == 0;
}

bool KFileReference::copy(const KDirectory& destination)
{
    return copyTo(destination.getPath().getChildFile(getObjectName()));
}

bool KFileReference::copyAndRename(const KDirectory& destination, const KString& newName)
{
    return copyTo(destination.getPath().getChildFile(newName));
}

bool KFileReference::copyAndRename(const KPath& destination) { return copyTo(destination); }

KDirectory KFileReference::getDirectory() const { return KDirectory(getPath().getParent()); }

void KFileReference::changeExtension(const KString&) { notImplemented(); }

void KFileReference::writeToFile(KFile& file, int32_t version)
{
    KClassWriter writer;
    writer.begin(file, classRecord);
    writer.newSection(1);
    file.writeLong(fileTypeID);
    KDiskObjectReference::writeToFile(file, version);
    writer.end();
}

void KFileReference::readFromFile(KFile& file)
{
    auto readMain = [&](int32_t) {
        fileTypeID = file.readLong();
        KDiskObjectReference::readFromFile(file);
    };
    KClassReader::readSections(file, classRecord, { { 1, readMain } });
    setKind(KPath::FileKind);
}

void KFileReference::describe(KJsonWriter& out) const
{
    out.member("fileTypeID", fileTypeID);
    KDiskObjectReference::describe(out);
}
