#pragma once

#include "kernel/KDiskObjectReference.h"

// A reference to a file. Its kind is always 2; `fileTypeID` is the id of the
// extension's entry in KFileTypeHandler, -1 for an unknown extension.
class KFileReference : public KDiskObjectReference {
    K_DECLARE_CLASS(KFileReference)
public:
    KFileReference();
    explicit KFileReference(const KPath& path);
    KFileReference(const KFileReference& other);
    ~KFileReference() override;
    KFileReference& operator=(const KFileReference& other);

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // Slots 10 and 11 also look the extension up.
    void refresh() override;
    void refreshType() override;
    void setPath(const KPath& path) override;
    // A path without name and extension names no file.
    bool doesExist() const override;
    // Deletes the file; an empty path is fatal ("No Filename").
    bool remove() override;
    // A new name with a "." replaces name and extension, one without keeps
    // the extension. The file is moved when the texts differ.
    bool rename(const KString& newName) override;
    // Copies into a folder, overwriting. Nothing happens when the copy would
    // land on the file itself or when either side does not exist. A failure
    // other than a refusal by permissions raises code 50.
    bool copy(const KDirectory& destination) override;
    bool copyAndRename(const KDirectory& destination, const KString& newName) override;
    bool copyAndRename(const KPath& destination) override;
    // Slot 19: the folder that holds the file.
    virtual KDirectory getDirectory() const;
    // Slot 20: not implemented.
    virtual void changeExtension(const KString& extension);

    int32_t getFileTypeID() const { return fileTypeID; }

private:
    bool copyTo(const KPath& destination);

    int32_t fileTypeID = -1;
};
