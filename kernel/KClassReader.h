#pragma once

#include "kernel/KThing.h"

#include "kernel/KSourceLocation.h"
#include <functional>
#include <initializer_list>
#include <span>

// Reads the frame that KClassWriter wrote for one class of an object. The
// reader trusts no number from the file: a body size or section length that
// does not fit the bytes left, or a section count that cannot fit the body,
// stores an error in the file and leaves the reader with no sections, so
// that reading stops without over-reading or allocating.
//
// A reader lives on the stack for one readFromFile; destroying it between
// begin and end is fatal on purpose.
class KClassReader : public KThing {
    K_DECLARE_CLASS(KClassReader)
public:
    // What readObject found in the stream.
    enum ObjectResult : int32_t {
        ObjectRead = 0, // a new object, already read (check the file's error)
        NullObject = 1, // class id 0
        NulledObject = 2, // unknown class under policy 0: skipped, keep a null slot
        DroppedObject = 3, // unknown class under policy 1: skipped, use no slot
        ReadFailed = 4, // damaged stream, or an unknown class under policy 2
    };

    KClassReader() = default;
    ~KClassReader() override;
    KClassReader(const KClassReader&) = delete;
    KClassReader& operator=(const KClassReader&) = delete;

    // Reads the head. On a class id other than `cls`'s, policy 2 raises code
    // 31 and reading goes on; otherwise the reader has no sections, the
    // position stays just after id and version, and droppedObjects goes up.
    // True when the body can be read.
    bool begin(KFile& file, const KClass* cls, int32_t* version, int32_t* sections);
    bool begin(KFile& file, int32_t classID, int32_t* version, int32_t* sections);
    // The next section's id, or -1 (and false) when none is left.
    bool nextSection(int32_t* id);
    int32_t getSectionSize() const { return sectionLength - 8; }
    int32_t getSectionID() const { return sectionID; }
    // Payload bytes between the position and the end of the current section.
    int32_t sectionBytesLeft() const;
    // Moves to the end of the current section and counts the body as one
    // whose data was ignored.
    void skipSection();
    // With sections left, moves to the end of the body and counts the body
    // as skipped. Without, it does not move: the last section's reader has
    // to consume its payload exactly.
    void end();

    bool isBegun() const { return file != nullptr; }
    int32_t getSectionsLeft() const { return sectionsLeft; }

    // A section a class knows: its number, the code that reads its payload
    // (handed the payload's length), and the fewest payload bytes that code
    // needs; a shorter section is passed over like an unknown one.
    struct KnownSection {
        int32_t id;
        std::function<void(int32_t payload)> read;
        int32_t minimumSize = 0;
    };

    // Reads the frame of `cls` from begin to end, stating only the sections
    // the class knows. The first section of each known number is read by its
    // entry; other sections are skipped by their length. After a read the
    // position moves to the section's end: a payload read only in part (a
    // later version added fields) is skipped and counted as ignored data, a
    // payload that ran past the end marks the file as damaged. Damaged heads
    // and lengths end the read as begin and nextSection decide.
    static void readSections(KFile& file, const KClass* cls, std::span<const KnownSection> known);
    static void readSections(KFile& file, const KClass* cls, std::initializer_list<KnownSection> known)
    {
        readSections(file, cls, std::span<const KnownSection>(known.begin(), known.size()));
    }

    // Passes over a whole class stream by its head. False, with the file's
    // error set, when the head is damaged.
    static bool skipClass(KFile& file);

    // The object reference convention: a class id (0 for null), then the
    // object's class stream. A registered class is created and reads itself;
    // `out` holds it. An unknown class follows the unknown-class policy; a
    // class that is not `expected` or a subclass of it, or objects nested
    // too deep, count as damage. Policy 2 raises code 28 with the caller as
    // location.
    static ObjectResult readObject(KFile& file, KThingPtr& out, const KClass* expected = nullptr,
                                   const KSourceLocation& where = KSourceLocation::current());

private:
    void fail(int32_t code);
    void finishSection(int32_t sectionEnd);
    void countIgnoredData();

    int32_t bodySize = 0;
    int32_t sectionsLeft = 0;
    int32_t bodyStart = 0;
    int32_t sectionIndex = 0;
    int32_t sectionStart = 0;
    int32_t sectionLength = 0;
    int32_t sectionID = -1;
    bool ignoredData = false;
    KFile* file = nullptr;
};
