#pragma once

#include "kernel/KDiskObjectReference.h"

// A reference to a folder. A path given with a file part takes that part as
// its last folder, so "/home/user" and "/home/user/" name the same folder.
class KDirectory : public KDiskObjectReference {
    // Declared by hand rather than by K_DECLARE_CLASS: the class's own
    // create() would clash with the create procedure's name.
public:
    static KClass* classRecord;
    static KThing* createInstance();
    static KClass* registerClass();
    KClass* getClass() const override;
    bool isClassRegistered() const override;

public:
    KDirectory();
    explicit KDirectory(const KPath& path);
    KDirectory(const KDirectory& other);
    ~KDirectory() override;
    KDirectory& operator=(const KDirectory& other);

    KThing* deepCopy() const override;

    void setPath(const KPath& path) override;
    // True only for an existing folder.
    bool doesExist() const override;
    // Removes the folder, which must be empty.
    bool remove() override;
    bool rename(const KString& newName) override;
    // Copies the folder with its contents into `destination`.
    bool copy(const KDirectory& destination) override;
    bool copyAndRename(const KDirectory& destination, const KString& newName) override;
    // Copies the contents into the folder at `destination`.
    bool copyAndRename(const KPath& destination) override;
    // Slot 19: makes the folder (its parent must exist).
    virtual bool create();

    // The files, the folders, or both, sorted by name: heap KFileReference
    // and KDirectory objects. A folder whose path is too long for the file
    // system ends the process ("Directory Path exceeds MAX_PATH").
    KDiskObjectList getFiles() const;
    KDiskObjectList getFolders() const;
    KDiskObjectList getContents() const;

    // Lists the folder at `nativeText`, naming the entries under `base`.
    static KDiskObjectList list(const KString& nativeText, const KPath& base, bool files, bool folders);

private:
    KDiskObjectList listOwn(bool files, bool folders) const;
};
