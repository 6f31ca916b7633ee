#pragma once

#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "kernel/KTree.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSpeechException.h"

#include <string>
#include <unordered_map>
#include <vector>

// The application's one speech exceptions dictionary: a tree of
// KSpeechException ordered by the written form, read from a file at
// construction and again by reload(). The newest handler is the current one.
//
// The file: magic "KSPX", a version, a count, then that many class streams of
// KSpeechException, all big-endian. A missing file or one with another magic
// is an empty dictionary. A damaged file keeps the entries read before the
// damage, warns once, and is copied aside (".bak") before it is next
// written; every write goes through a temporary file, so a failed save
// leaves the old file as it was.
class KSpeechExceptionHandler : public KString {
    K_DECLARE_CLASS(KSpeechExceptionHandler)
public:
    static constexpr int32_t kMagic = 0x4B535058; // "KSPX"
    static constexpr int32_t kFileVersion = 1;

    enum class ReadResult : int32_t {
        Read = 0,
        Missing = 1,
        NotExceptions = 2, // another magic, or too short for one
        Damaged = 3,
    };

    // The dictionary of the user's data folder.
    KSpeechExceptionHandler();
    explicit KSpeechExceptionHandler(const KFileReference& file);
    KSpeechExceptionHandler(const KSpeechExceptionHandler&) = delete;
    KSpeechExceptionHandler& operator=(const KSpeechExceptionHandler&) = delete;
    ~KSpeechExceptionHandler() override;

    static KSpeechExceptionHandler* current();
    // $XDG_DATA_HOME/TaleLoom/KSpeechExceptions.DAT.
    static KFileReference defaultFile();

    const KFileReference& getFile() const { return file; }
    // Reads the file again, replacing the entries.
    ReadResult reload();
    ReadResult getReadResult() const { return readResult; }
    // Writes the entries to the file, making its folder when needed. False
    // when the file could not be written (or a damaged one not copied aside
    // first); the old file then stays. A handler made without a file keeps
    // its entries in memory only.
    bool save();

    // The entry for a word: the exact written form, else the first one that
    // differs only in case. Null for an empty word.
    const KSpeechException* find(const KString& word) const;
    // Adds an entry or replaces the spoken form of the entry written so.
    // False for an empty written form or one holding a blank.
    bool add(const KString& written, const KString& spoken);
    // Removes the entry written exactly so; false when there is none.
    bool remove(const KString& written);
    void removeAll();
    // Replaces all entries, as reading a file does: a later entry of the
    // same written form wins, one with an empty written form is left out.
    void setEntries(std::vector<KSpeechExceptionPtr> entries);
    int32_t getCount() const { return exceptions.getCount(); }
    // The entries in the order of their written forms.
    std::vector<KSpeechException*> getEntries() const;
    const KTree& getExceptions() const { return exceptions; }

    // Reads the file's form from the position: the records in file order,
    // in `out` (also those read before damage). Never allocates for a count
    // the bytes cannot hold.
    static ReadResult readStream(KFile& file, int32_t& version, std::vector<KSpeechExceptionPtr>& out);
    // Writes the file's form of the entries.
    static void writeStream(KFile& file, const std::vector<KSpeechException*>& entries);

    // True when the text could be a written form: not empty, no blanks.
    static bool isWordForm(const KString& written);

private:
    void fill(std::vector<KSpeechExceptionPtr>& records);
    void rebuild(std::vector<KSpeechException*> sorted);
    void insertBalanced(const std::vector<KSpeechException*>& sorted, size_t low, size_t high);
    void rebuildCaseIndex();
    KSpeechException* findExact(const KString& word) const;
    bool copyAsideDamaged();
    void warnDamaged();

    KFileReference file;
    KTree exceptions;
    // The lower-case written forms, each to the first entry in key order
    // that has it.
    std::unordered_map<std::string, KSpeechException*> byLowerCase;
    ReadResult readResult = ReadResult::Missing;
    bool damagedOnDisk = false;
    bool warned = false;
};
