#pragma once

#include "kernel/KDirectory.h"

// The well-known folders of the platform, filled once when the singleton is
// first used. On Linux they are the XDG folders: the first system data
// folder, the program's own folder, the user's data folder, the temporary
// folder, the user's documents, pictures, music, videos and desktop (the
// home folder when one is not configured), and the current directory.
class KFileSystem : public KThing {
    K_DECLARE_CLASS(KFileSystem)
public:
    KFileSystem();
    ~KFileSystem() override;
    KFileSystem(const KFileSystem&) = delete;
    KFileSystem& operator=(const KFileSystem&) = delete;

    // The singleton, made on first use.
    static KFileSystem& get();

    const KDirectory& getCommonApplicationDataDirectory() const { return folders[0]; }
    const KDirectory& getApplicationDirectory() const { return folders[1]; }
    const KDirectory& getUserApplicationDataDirectory() const { return folders[2]; }
    const KDirectory& getTemporaryDirectory() const { return folders[3]; }
    const KDirectory& getDocumentsDirectory() const { return folders[4]; }
    const KDirectory& getPicturesDirectory() const { return folders[5]; }
    const KDirectory& getMusicDirectory() const { return folders[6]; }
    const KDirectory& getVideoDirectory() const { return folders[7]; }
    const KDirectory& getDesktopDirectory() const { return folders[8]; }

    // The process's current directory as it is now.
    const KDirectory& getCurrentDirectory();
    bool setCurrentDirectory(const KDirectory& directory);

    // The volumes; on Linux the root of the file tree.
    KDiskObjectList getVolumes() const;

    static constexpr int32_t kFolderCount = 10;

private:
    static KDirectory folderFromNative(int32_t which);

    KDirectory folders[kFolderCount];
};
