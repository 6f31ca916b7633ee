#pragma once

#include "kernel/KDiskObjectReference.h"

// A reference to a volume. On Linux the one volume is the root of the file
// tree; a volume name stands for a top folder (a mount point).
class KVolume : public KDiskObjectReference {
    K_DECLARE_CLASS(KVolume)
public:
    enum ContentType : int32_t { Files = 0, Folders = 1, FilesAndFolders = 2 };

    KVolume();
    explicit KVolume(const KPath& path);
    KVolume(const KVolume& other);
    ~KVolume() override;
    KVolume& operator=(const KVolume& other);

    KThing* deepCopy() const override;

    // Keeps only the volume of `path`.
    void setPath(const KPath& path) override;
    bool doesExist() const override;
    // Volumes cannot be renamed or copied: "Not Yet Implemented!".
    bool rename(const KString& newName) override;
    bool copy(const KDirectory& destination) override;

    // The top files or folders, sorted by name.
    KDiskObjectList getContents(ContentType type) const;

private:
    KString getRootText() const;
};
