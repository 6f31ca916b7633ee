#include "kernel/KVolume.h"

#include "kernel/KClass.h"
#include "kernel/KDirectory.h"
#include "kernel/native/KNativeFiles.h"

K_DEFINE_CLASS(KVolume, KDiskObjectReference)

KVolume::KVolume() { setKind(KPath::VolumeKind); }

KVolume::KVolume(const KPath& path) { KVolume::setPath(path); }

KVolume::KVolume(const KVolume& other)
    : KDiskObjectReference(other)
{
}

KVolume::~KVolume() = default;

KVolume& KVolume::operator=(const KVolume& other)
{
    KDiskObjectReference::operator=(other);
    return *this;
}

KThing* KVolume::deepCopy() const { return new KVolume(*this); }

void KVolume::setPath(const KPath& path)
{
    KPath volumeOnly;
    volumeOnly.setVolume(path.getVolume());
    KDiskObjectReference::setPath(volumeOnly);
    setKind(KPath::VolumeKind);
}

KString KVolume::getRootText() const
{
    const KString& volume = getPath().getVolume();
    return volume.isEmpty() ? KString("/") : KString("/") + volume;
}

bool KVolume::doesExist() const
{
    KNativeFileInfo info;
    return knsFileInfo(getRootText(), info) && info.isDirectory;
}

bool KVolume::rename(const KString&)
{
    notImplemented();
    return false;
}

bool KVolume::copy(const KDirectory&)
{
    notImplemented();
    return false;
}

KDiskObjectList KVolume::getContents(ContentType type) const
{
    return KDirectory::list(getRootText(), getPath(), type != Folders, type != Files);
}
