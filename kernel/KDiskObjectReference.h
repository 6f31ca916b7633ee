#pragma once

#include "kernel/KDate.h"
#include "kernel/KPath.h"
#include "kernel/KTime.h"

#include "kernel/KSourceLocation.h"
#include <vector>

// A reference to a place on disk: a path with the dates of the object found
// there and its kind (the path's kind; 3 before a path is set). The base
// class knows existence and dates; files, folders and volumes add what they
// can do.
class KDiskObjectReference : public KThing {
    K_DECLARE_CLASS(KDiskObjectReference)
public:
    KDiskObjectReference();
    explicit KDiskObjectReference(const KPath& path);
    KDiskObjectReference(const KDiskObjectReference& other);
    ~KDiskObjectReference() override;
    KDiskObjectReference& operator=(const KDiskObjectReference& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Slot 10: brings validity and dates up to date after a change of path.
    virtual void refresh();
    // Slot 11.
    virtual void refreshType();
    // Slot 12: copies the path, sets the kind from it, then refreshes.
    virtual void setPath(const KPath& path);
    // Slot 13.
    virtual bool doesExist() const;
    // Slots 14 to 18: the base shows "Not Yet Implemented!".
    virtual bool remove();
    virtual bool rename(const KString& newName);
    virtual bool copy(const KDirectory& destination);
    virtual bool copyAndRename(const KDirectory& destination, const KString& newName);
    virtual bool copyAndRename(const KPath& destination);

    const KPath& getPath() const { return path; }
    int16_t getKind() const { return kind; }
    bool isValid() const { return valid != 0; }
    const KDate& getCreationDate() const { return creationDate; }
    const KDate& getModificationDate() const { return modificationDate; }
    const KTime& getCreationTime() const { return creationTime; }
    const KTime& getModificationTime() const { return modificationTime; }
    // The object's name: volume, last folder, or name and extension.
    KString getObjectName() const;
    // The path as the file system is given it, without a trailing separator.
    KString getNativeText() const;

protected:
    // Shows "Not Yet Implemented!" with the caller as caption.
    static void notImplemented(const KSourceLocation& where = KSourceLocation::current());
    void setKind(int16_t value) { kind = value; }
    KPath& editPath() { return path; }

private:
    int32_t valid = 0;
    KDate creationDate;
    KDate modificationDate;
    KTime creationTime;
    KTime modificationTime;
    KPath path;
    int16_t kind = KPath::EmptyKind;
};

// What a folder listing hands out: KFileReference and KDirectory objects.
using KDiskObjectList = std::vector<KPtr<KDiskObjectReference>>;
