#include "kernel/KFileSystem.h"

#include "kernel/KClass.h"
#include "kernel/KThingPtr.h"
#include "kernel/KVolume.h"
#include "kernel/native/KNativeFiles.h"

K_DEFINE_CLASS(KFileSystem, KThing)

KFileSystem::KFileSystem()
{
    for (int32_t i = 0; i < kFolderCount; ++i)
        folders[i] = folderFromNative(i);
}

KFileSystem::~KFileSystem() = default;

KFileSystem& KFileSystem::get()
{
    static KPtr<KFileSystem> instance(new KFileSystem());
    return *instance;
}

KDirectory KFileSystem::folderFromNative(int32_t which)
{
    KString text;
    if (!knsSpecialFolder(which, text))
        return KDirectory();
    // The separator at the end makes the last name a folder.
    return KDirectory(KPath(text + "/", KPath::LinuxPlatform));
}

const KDirectory& KFileSystem::getCurrentDirectory()
{
    folders[KNativeFolderCurrent] = folderFromNative(KNativeFolderCurrent);
    return folders[KNativeFolderCurrent];
}

bool KFileSystem::setCurrentDirectory(const KDirectory& directory)
{
    if (knsSetCurrentDirectory(directory.getPath().getNativeText()) != 0)
        return false;
    getCurrentDirectory();
    return true;
}

KDiskObjectList KFileSystem::getVolumes() const
{
    KDiskObjectList volumes;
    volumes.push_back(kAdopt<KDiskObjectReference>(new KVolume()));
    return volumes;
}
