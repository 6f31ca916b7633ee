#pragma once

#include "kernel/KFileReference.h"
#include "kernel/KNamedBag.h"
#include "kernel/KThingPtr.h"

#include <string>

// A named bag of objects kept as a file: an 8-byte head, the long `magic`
// that says what kind of file it is and the long `version`, then the bag's
// own class stream.
//
// Loading trusts nothing the file says: every count and length is checked
// against the bytes there before anything is allocated, and a damaged file
// makes load() return false with the file's error code in getFileError(),
// never a crash. Entries read before the damage stay in the document until
// the caller clears them.
//
// Saving collects the file in memory, writes it to a temporary file beside
// the target and renames it over the target only when every byte was
// written and flushed: a failed save leaves the old file as it was.
class KDocument : public KNamedBag {
    K_DECLARE_CLASS(KDocument)
public:
    // Called with true before a load or save and with false after it; the
    // windowing layer installs one that shows the busy cursor.
    using BusyProc = void (*)(bool busy);

    KDocument();
    // Copies carry the entries (shared), magic, version and file.
    KDocument(const KDocument& other);
    KDocument& operator=(const KDocument& other);

    // A new document with copies of the entries.
    KThing* deepCopy() const override;
    // The head ("magic" as its four characters, "version", "dataIgnored")
    // and the entries.
    void describe(KJsonWriter& out) const override;

    // Slot 10: a reference on the heap is shared, any other is copied.
    virtual void setFile(KFileReference& reference);
    // Slot 11.
    virtual void clearFile();
    bool hasFile() const { return file.get() != nullptr; }
    void getFile(KFileReferencePtr& out) const { out = file; }

    void setMagic(int32_t value) { magic = value; }
    int32_t getMagic() const { return magic; }
    void setVersion(int32_t value) { version = value; }
    int32_t getVersion() const { return version; }
    // Loading reads the whole file into memory first instead of reading it
    // piece by piece, which is over ten times faster for a large document.
    // Saving always collects the file in memory.
    void setUseMemoryBuffer(bool buffered) { useMemoryBuffer = buffered; }
    bool getUseMemoryBuffer() const { return useMemoryBuffer; }
    // After a load: objects were dropped or class data was skipped because
    // this program does not know them.
    bool isDataIgnored() const { return dataIgnored; }
    // The file's error code after the last load or save, 0 for none.
    int32_t getFileError() const { return fileError; }

    bool save();
    // False for another magic (the file's content is left unread) or a
    // damaged file.
    bool load();

    // The same steps on a file the caller opened: a memory image, or one
    // being written. True when the file's error is still 0.
    bool saveTo(KFile& target);
    bool loadFrom(KFile& source);

    // The magic of four characters, first character in the high byte.
    static int32_t makeMagic(const char* fourCharacters);
    // The four characters of a magic, as they stand in the file.
    static std::string magicCharacters(int32_t magic);

    static void setBusyProc(BusyProc proc);

private:
    void readBody(KFile& source);

    KFileReferencePtr file;
    int32_t magic = 0;
    int32_t version = 0;
    bool dataIgnored = false;
    bool useMemoryBuffer = false;
    int32_t fileError = 0;
};
