#pragma once

#include "kernel/KThing.h"

#include "kernel/KSourceLocation.h"

// Frames one class of an object as a class stream: class id, class version,
// body size, section count, then numbered sections that each carry their own
// length, so that a reader can skip what it does not know. The sizes are
// patched in place, so the file must be seekable (direct or memory mode).
//
// A writer lives on the stack for one writeToFile; destroying it between
// begin and end is fatal on purpose.
class KClassWriter : public KThing {
    K_DECLARE_CLASS(KClassWriter)
public:
    KClassWriter() = default;
    ~KClassWriter() override;
    KClassWriter(const KClassWriter&) = delete;
    KClassWriter& operator=(const KClassWriter&) = delete;

    // A null class raises code 18.
    void begin(KFile& file, const KClass* cls);
    // The frame of a class known only by its id, for records written on
    // behalf of a class that is not registered here.
    void begin(KFile& file, int32_t classID, int32_t version);
    // Closes the open section and opens section `id` with an empty length.
    void newSection(int32_t id);
    // Patches the last section, the body size and the section count, and
    // leaves the position at the end of the stream.
    void end();

    bool isBegun() const { return file != nullptr; }
    int32_t getSectionCount() const { return sectionCount; }

    // The object reference convention: the class id of the object's most
    // derived class, 0 for null, then the object's own writeToFile(F, 1).
    // An object without a class raises code 28 with the caller as location
    // and is written as null.
    static void writeObject(KFile& file, KThing* object, const KSourceLocation& where = KSourceLocation::current());

private:
    void patchSection();
    void patchLong(int32_t position, int32_t value);

    int32_t version = 0;
    int32_t sectionCount = 0;
    int32_t headerPos = 0;
    int32_t sectionLengthPos = 0;
    int32_t currentSection = 0;
    int32_t sectionStart = 0;
    KFile* file = nullptr;
};
