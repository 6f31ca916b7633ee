#pragma once

#include "kernel/KThing.h"

// Raw bytes owned by an object: a whole file read into memory, or a block of
// resource data. Copies are deep.
class KMemoryBlock : public KThing {
    K_DECLARE_CLASS(KMemoryBlock)
public:
    KMemoryBlock() = default;
    KMemoryBlock(const KMemoryBlock& other);
    ~KMemoryBlock() override;
    KMemoryBlock& operator=(const KMemoryBlock& other);

    KThing* deepCopy() const override;

    // Drops the old contents and allocates `size` uncleared bytes.
    void setSize(int32_t size);
    int32_t getSize() const { return size; }
    // Null when `offset` is out of range.
    void* getAddress(int32_t offset = 0) const;
    // Silently ignored when the bytes do not fit.
    void putData(int32_t offset, const void* source, int32_t count);

    // The bytes of a whole file; writing creates the file.
    bool readFromDiskFile(const KFileReference& file);
    bool writeToDiskFile(const KFileReference& file) const;

    // Raw data resources. The program's own are compiled in; those of
    // another program ("module") lie beside it, in a file named after the
    // module and the id, which is what writing makes.
    bool readFromResource(int16_t id);
    bool readFromResource(const KFileReference& module, int16_t id);
    bool writeToResource(const KFileReference& module, int16_t id) const;
    // A file compiled into the program's resources under its whole resource
    // path; false, and the block unchanged, when there is none.
    bool readFromResourcePath(const char* path);

    // The file beside `module` that holds its resource `id`.
    static KPath resourcePath(const KFileReference& module, int16_t id);

private:
    void release();

    char* data = nullptr;
    int32_t size = 0;
};
