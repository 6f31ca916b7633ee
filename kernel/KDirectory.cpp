#include "kernel/KDirectory.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/native/KNativeFiles.h"

#include <string_view>

namespace {

// A folder's own path with its name and extension turned into a last folder.
KPath asFolder(const KPath& path)
{
    if (path.getName().isEmpty() && path.getExtension().isEmpty())
        return path;
    KString last;
    path.getObjectName(last);
    KPath folder(path);
    folder.clearName();
    folder.clearExtension();
    folder.addFolder(last);
    return folder;
}

bool isInside(const KString& inner, const KString& outer)
{
    std::string_view a(inner.c_str(), size_t(inner.getLength()));
    std::string_view b(outer.c_str(), size_t(outer.getLength()));
    return a == b || (a.size() > b.size() && a.substr(0, b.size()) == b && a[b.size()] == '/');
}

// Copies the contents of one folder into another, which is made when missing.
bool copyContents(const KString& from, const KString& to)
{
    KNativeFileInfo info;
    if (!knsFileInfo(to, info) && knsDirectoryCreate(to) != 0)
        return false;
    std::vector<KNativeDirectoryEntry> entries;
    if (knsDirectoryList(from, entries) != 0)
        return false;
    bool ok = true;
    for (const KNativeDirectoryEntry& entry : entries) {
        KString source = from + "/" + entry.name;
        KString target = to + "/" + entry.name;
        bool accessDenied = false;
        if (entry.isDirectory)
            ok = copyContents(source, target) && ok;
        else
            ok = (knsFileCopy(source, target, &accessDenied) == 0 || accessDenied) && ok;
    }
    return ok;
}

} // namespace

KThing* KDirectory::createInstance() { return new KDirectory(); }
K_DEFINE_CLASS_COMMON(KDirectory, KDiskObjectReference, &KDirectory::createInstance)

KDirectory::KDirectory() = default;

KDirectory::KDirectory(const KPath& path) { KDirectory::setPath(path); }

KDirectory::KDirectory(const KDirectory& other)
    : KDiskObjectReference(other)
{
}

KDirectory::~KDirectory() = default;

KDirectory& KDirectory::operator=(const KDirectory& other)
{
    KDiskObjectReference::operator=(other);
    return *this;
}

KThing* KDirectory::deepCopy() const { return new KDirectory(*this); }

void KDirectory::setPath(const KPath& path) { KDiskObjectReference::setPath(asFolder(path)); }

bool KDirectory::doesExist() const
{
    KNativeFileInfo info;
    KString text = getNativeText();
    return !text.isEmpty() && knsFileInfo(text, info) && info.isDirectory;
}

bool KDirectory::remove() { return knsDirectoryRemove(getNativeText()) == 0; }

bool KDirectory::create()
{
    bool made = knsDirectoryCreate(getNativeText()) == 0;
    refresh();
    return made;
}

bool KDirectory::rename(const KString& newName)
{
    if (newName.isEmpty() || getPath().getFolderCount() == 0)
        return false;
    KPath renamed(getPath());
    renamed.removeLastFolder();
    renamed.addFolder(newName);
    KString from = getNativeText();
    KString to = KDirectory(renamed).getNativeText();
    if (from == to)
        return true;
    if (knsFileRename(from, to) != 0)
        return false;
    setPath(renamed);
    return true;
}

bool KDirectory::copy(const KDirectory& destination) { return copyAndRename(destination, getObjectName()); }

bool KDirectory::copyAndRename(const KDirectory& destination, const KString& newName)
{
    if (newName.isEmpty())
        return false;
    return copyAndRename(destination.getPath().getChildFolder(newName));
}

bool KDirectory::copyAndRename(const KPath& destination)
{
    KString from = getNativeText();
    KString to = KDirectory(destination).getNativeText();
    // A copy into itself would never end.
    if (from.isEmpty() || to.isEmpty() || isInside(to, from) || !doesExist())
        return false;
    if (copyContents(from, to))
        return true;
    KErrorHandler::raiseError(KError::ErrorCopyingFile);
    return false;
}

KDiskObjectList KDirectory::list(const KString& nativeText, const KPath& base, bool files, bool folders)
{
    KDiskObjectList result;
    std::vector<KNativeDirectoryEntry> entries;
    if (knsDirectoryList(nativeText, entries) != 0)
        return result;
    for (const KNativeDirectoryEntry& entry : entries) {
        if (entry.isDirectory && folders)
            result.push_back(kAdopt<KDiskObjectReference>(new KDirectory(base.getChildFolder(entry.name))));
        else if (!entry.isDirectory && files)
            result.push_back(kAdopt<KDiskObjectReference>(new KFileReference(base.getChildFile(entry.name))));
    }
    return result;
}

KDiskObjectList KDirectory::listOwn(bool files, bool folders) const
{
    KString text = getNativeText();
    if (text.getLength() >= kMaxPathLength)
        KErrorHandler::fatal("Directory Path exceeds MAX_PATH");
    return list(text, getPath(), files, folders);
}

KDiskObjectList KDirectory::getFiles() const { return listOwn(true, false); }
KDiskObjectList KDirectory::getFolders() const { return listOwn(false, true); }
KDiskObjectList KDirectory::getContents() const { return listOwn(true, true); }
