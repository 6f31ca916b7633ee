#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KFileReference.h"
#include "kernel/KThingPtr.h"
#include "project/ProjectForward.h"
#include "tape/Tape.h"

// One open story: the tape and its place on disk. On disk a project is a
// folder holding the document N.TPD and, beside it, the folders "Media"
// (copies of the media the tape uses) and "Actors" (the actor files
// NAME.ACT). The document is a KDocument of magic "STDF" with three entries:
// "Tape", and the page size as "DocumentW" and "DocumentH".
//
// Loading tries twice, a short while apart, since a file that was just
// written by another program may still be busy. The project speaks to the
// user only through the tape host, so tools and tests never wait on a
// dialog.
class StylusProject : public KThing {
    K_DECLARE_CLASS(StylusProject)
public:
    static constexpr int32_t kDocumentMagic = 0x53544446; // "STDF"
    static constexpr int32_t kDocumentVersion = 3;
    static constexpr int32_t kDefaultRetryDelay = 1000;

    // Four empty references and a new empty tape.
    StylusProject();
    // A copy of the tape and of the file reference; no folders.
    StylusProject(const StylusProject& other);
    ~StylusProject() override;
    StylusProject& operator=(const StylusProject&) = delete;

    KThing* deepCopy() const override;
    // Section 1 holds the tape's stream. The document file does not use
    // this form; copying and the clipboard do. Reading replaces the tape.
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    // --- Fields: a reference on the heap is shared, any other is copied ----

    virtual void setFile(const KFileReference& reference);
    virtual void clearFile();
    virtual void setDirectory(const KDirectory& directory);
    virtual void clearDirectory();
    // The tape looks for its media in this folder.
    virtual void setMediaDirectory(const KDirectory& directory);
    virtual void clearMediaDirectory();
    // The tape must be on the heap; the project becomes its owner.
    virtual void setTape(Tape& tape);
    virtual void clearTape();

    KFileReference* getFile() const { return file.get(); }
    bool hasFile() const { return file.get() != nullptr; }
    bool getFile(KFileReferencePtr& out) const;
    KDirectory* getDirectory() const { return directory.get(); }
    bool hasDirectory() const { return directory.get() != nullptr; }
    bool getDirectory(KDirectoryPtr& out) const;
    KDirectory* getMediaDirectory() const { return mediaDirectory.get(); }
    bool hasMediaDirectory() const { return mediaDirectory.get() != nullptr; }
    bool getMediaDirectory(KDirectoryPtr& out) const;
    Tape* getTape() const { return tape.get(); }
    bool hasTape() const { return tape.get() != nullptr; }
    bool getTape(TapePtr& out) const;
    // The "Actors" folder beside "Media", set with it.
    KDirectory* getActorsDirectory() const { return actorsDirectory.get(); }
    bool hasActorsDirectory() const { return actorsDirectory.get() != nullptr; }

    // Names the project after the file: its folder, and the "Media" and
    // "Actors" folders in it. Nothing happens when `reference` is the very
    // object held. The folders are not created here.
    void setFileAndFolders(const KFileReference& reference);

    // --- Saving and loading ----------------------------------------------------

    // Writes the document. The old file is replaced only when the whole
    // document was written, so a failed save leaves it as it was, and the
    // project and the tape's modified mark as they were. No message: the
    // caller reports.
    bool save(const KFileReference& reference);
    // With the file held; false when there is none.
    bool save();
    // The kernel file code of the last save that failed (36 for a full
    // disk), 0 after one that succeeded.
    int32_t getLastSaveError() const { return lastSaveError; }
    // Reads the document and takes its tape. A file that cannot be read is
    // tried once more after the retry delay, then refused with a message;
    // the tape stays as it was then. Old documents (STT) are refused.
    bool load(const KFileReference& reference);
    // The document written into a file the caller opened (a memory image).
    // The tape's marks and the project's file stay as they are.
    bool saveTo(KFile& target);
    // The document part of load() on a file the caller opened (a memory
    // image): one try, no folders and no file name, the same messages.
    bool loadFrom(KFile& source);
    // The same for elements another TaleLoom put on the system clipboard:
    // without a word, since nobody asked for that file; false when it is
    // damaged, newer than this program or holds data it would drop.
    bool takeClip(KFile& source);

    // The wait between the two tries of a load, in milliseconds.
    static void setRetryDelay(int32_t milliseconds);
    static int32_t getRetryDelay();
    // Null for none; the observer is not owned.
    static void setObserver(StylusProjectObserver* observer);

private:
    // The three entries of the document.
    void fillDocument(KDocument& document);
    // Both tries of a load; true when `document` holds a tape.
    bool readDocument(const KFileReference& reference, KDocument& document);
    // The message for a file that is no document.
    void refuseDocument();
    // Takes the tape and the page size out of a document that was read.
    void takeDocument(KDocument& document);
    void syncTapeMediaDirectory();
    void releaseTape();

    KFileReferencePtr file;
    KDirectoryPtr directory;
    KDirectoryPtr mediaDirectory;
    TapePtr tape;
    KDirectoryPtr actorsDirectory;
    int32_t lastSaveError = 0;
};
