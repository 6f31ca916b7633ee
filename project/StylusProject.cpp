#include "project/StylusProject.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KDocument.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KVariable.h"
#include "project/StylusProjectObserver.h"
#include "tape/TapeHost.h"
#include "windowing/KApplication.h"
#include "windowing/KNativeLayer.h"

#include <chrono>
#include <thread>

K_DEFINE_CLASS(StylusProject, KThing)

namespace {

constexpr int32_t kMainSection = 1;
constexpr const char* kTapeKey = "Tape";
constexpr const char* kWidthKey = "DocumentW";
constexpr const char* kHeightKey = "DocumentH";
constexpr const char* kMediaFolder = "Media";
constexpr const char* kActorsFolder = "Actors";
constexpr const char* kOldDocumentExtension = "STT";

StylusProjectObserver* gObserver = nullptr;
int32_t gRetryDelay = StylusProject::kDefaultRetryDelay;

// Keeps the event loop from blocking for long while it is turned by hand, so
// that a wait ends on time even when no message comes.
class NeverBlockScope {
public:
    explicit NeverBlockScope(KApplication& application)
        : application(application)
        , wasSet(application.hasAppFlags(KApplication::NeverBlock))
    {
        application.setAppFlags(KApplication::NeverBlock);
    }
    ~NeverBlockScope()
    {
        if (!wasSet)
            application.clearAppFlags(KApplication::NeverBlock);
    }
    NeverBlockScope(const NeverBlockScope&) = delete;
    NeverBlockScope& operator=(const NeverBlockScope&) = delete;

private:
    KApplication& application;
    bool wasSet;
};

// Waits, giving the events their turn when the program's loop is running;
// a tool without one just sleeps.
void waitProcessingEvents(int32_t milliseconds)
{
    if (milliseconds <= 0)
        return;
    KApplication* application = KApplication::current();
    if (!application || application->getState() != KApplication::Turning || !KNativeLayer::current()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return;
    }
    NeverBlockScope neverBlock(*application);
    uint32_t start = knsGetTime();
    while (kTimeDifference(knsGetTime(), start) < milliseconds && application->hasAppFlags(KApplication::Running))
        application->doOneLoop();
}

void prepareDocument(KDocument& document)
{
    document.setMagic(StylusProject::kDocumentMagic);
    document.setVersion(StylusProject::kDocumentVersion);
    document.setUseMemoryBuffer(true);
}

Tape* tapeOf(const KDocument& document) { return dynamic_cast<Tape*>(document.findNamedObject(kTapeKey)); }

// A stored size, or `fallback` when the entry is missing or of another kind.
int16_t sizeEntry(const KDocument& document, const char* key, int16_t fallback)
{
    auto* variable = dynamic_cast<KVariable*>(document.findNamedObject(key));
    if (!variable)
        return fallback;
    return int16_t(variable->getLong());
}

bool isOldDocument(const KFileReference& reference)
{
    return reference.getPath().getExtension().getUpper() == kOldDocumentExtension;
}

// A load always leaves the project's folder with its "Media" and "Actors".
void createProjectFolders(const KFileReference& reference)
{
    KPath folder = reference.getPath().getParent();
    for (const char* name : { kMediaFolder, kActorsFolder }) {
        KDirectory made(folder.getChildFolder(name));
        if (!made.doesExist())
            made.create();
    }
}

bool tryToRead(const KFileReference& reference, KDocument& document)
{
    document.clear();
    document.setFile(*new KFileReference(reference));
    prepareDocument(document);
    return document.load() && tapeOf(document);
}

void warnIfNewer(const KDocument& document)
{
    if (document.isDataIgnored() || document.getVersion() > StylusProject::kDocumentVersion)
        TapeHost::get().alert(tapeTranslate("Load Project"),
                              tapeTranslate("It seems that this project is of a newer version; some data was ignored"));
}

template<class T>
bool copyOut(const KPtr<T>& field, KPtr<T>& out)
{
    out = field;
    return field.get() != nullptr;
}

// A heap object is shared; any other is copied to the heap.
template<class T>
T* heapOrCopy(const T& object)
{
    return object.isOnHeap() ? const_cast<T*>(&object) : new T(object);
}

} // namespace

StylusProjectObserver::~StylusProjectObserver() = default;
void StylusProjectObserver::commitEditing(StylusProject&) { }
void StylusProjectObserver::fileChanged(StylusProject&) { }
void StylusProjectObserver::tapeLoaded(StylusProject&) { }

StylusProject::StylusProject() { setTape(*new Tape()); }

StylusProject::StylusProject(const StylusProject& other)
    : KThing(other)
{
    setTape(other.tape ? *new Tape(*other.tape) : *new Tape());
    if (other.file)
        file = new KFileReference(*other.file);
}

StylusProject::~StylusProject() { releaseTape(); }

KThing* StylusProject::deepCopy() const { return new StylusProject(*this); }

void StylusProject::setRetryDelay(int32_t milliseconds) { gRetryDelay = milliseconds; }
int32_t StylusProject::getRetryDelay() { return gRetryDelay; }
void StylusProject::setObserver(StylusProjectObserver* observer) { gObserver = observer; }

// ---- Fields ---------------------------------------------------------------

void StylusProject::setFile(const KFileReference& reference) { file = heapOrCopy(reference); }

void StylusProject::clearFile() { file.clear(); }

void StylusProject::setDirectory(const KDirectory& folder) { directory = heapOrCopy(folder); }

void StylusProject::clearDirectory() { directory.clear(); }

void StylusProject::setMediaDirectory(const KDirectory& folder)
{
    mediaDirectory = heapOrCopy(folder);
    syncTapeMediaDirectory();
}

void StylusProject::clearMediaDirectory()
{
    mediaDirectory.clear();
    syncTapeMediaDirectory();
}

void StylusProject::setTape(Tape& newTape)
{
    if (tape.get() == &newTape)
        return;
    releaseTape();
    tape = newTape;
    newTape.setOwnerProject(this);
    syncTapeMediaDirectory();
}

void StylusProject::clearTape() { releaseTape(); }

bool StylusProject::getFile(KFileReferencePtr& out) const { return copyOut(file, out); }
bool StylusProject::getDirectory(KDirectoryPtr& out) const { return copyOut(directory, out); }
bool StylusProject::getMediaDirectory(KDirectoryPtr& out) const { return copyOut(mediaDirectory, out); }
bool StylusProject::getTape(TapePtr& out) const { return copyOut(tape, out); }

void StylusProject::releaseTape()
{
    if (tape && tape->getOwnerProject() == this)
        tape->setOwnerProject(nullptr);
    tape.clear();
}

void StylusProject::syncTapeMediaDirectory()
{
    if (!tape)
        return;
    if (mediaDirectory)
        tape->setMediaDirectory(*mediaDirectory);
    else
        tape->clearMediaDirectory();
}

void StylusProject::setFileAndFolders(const KFileReference& reference)
{
    if (file.get() == &reference)
        return;
    file = new KFileReference(reference);
    KPath folder = reference.getPath();
    folder.clearName();
    folder.clearExtension();
    directory = new KDirectory(folder);
    if (gObserver)
        gObserver->fileChanged(*this);
    actorsDirectory = new KDirectory(folder.getChildFolder(kActorsFolder));
    setMediaDirectory(*new KDirectory(folder.getChildFolder(kMediaFolder)));
}

// ---- Saving -----------------------------------------------------------------

bool StylusProject::save(const KFileReference& reference)
{
    if (!tape)
        return false;
    bool saved = false;
    // Writing the tape marks it saved; a save that fails must not.
    KFlagSet flagsBefore = tape->getFlags();
    {
        TapeBusyCursor busy;
        if (gObserver)
            gObserver->commitEditing(*this);
        KDocument document;
        document.setFile(*new KFileReference(reference));
        fillDocument(document);
        saved = document.save();
        lastSaveError = saved ? 0 : document.getFileError();
        document.clear();
    }
    if (!saved) {
        tape->getFlags() = flagsBefore;
        return false;
    }
    tape->getFlags().clear(Tape::Modified);
    tape->getFlags().set(Tape::SavedOnce);
    setFileAndFolders(reference);
    return true;
}

bool StylusProject::saveTo(KFile& target)
{
    if (!tape)
        return false;
    KFlagSet flagsBefore = tape->getFlags();
    KDocument document;
    fillDocument(document);
    bool saved = document.saveTo(target);
    document.clear();
    tape->getFlags() = flagsBefore;
    return saved;
}

void StylusProject::fillDocument(KDocument& document)
{
    prepareDocument(document);
    document.add(kTapeKey, *tape, true);
    document.add(kWidthKey, *new KVariable(int32_t(tape->getPageSize().getWidth())), true);
    document.add(kHeightKey, *new KVariable(int32_t(tape->getPageSize().getHeight())), true);
}

bool StylusProject::save()
{
    if (!file)
        return false;
    // The held reference is replaced by setFileAndFolders' own copy only
    // when it is another object, so the argument stays alive throughout.
    KFileReferencePtr held = file;
    return save(*held);
}

// ---- Loading ----------------------------------------------------------------

bool StylusProject::load(const KFileReference& reference)
{
    TapeBusyCursor busy;
    if (isOldDocument(reference)) {
        refuseDocument();
        return false;
    }
    createProjectFolders(reference);
    KDocument document;
    if (!readDocument(reference, document)) {
        document.clear();
        refuseDocument();
        clearFile();
        clearDirectory();
        return false;
    }
    warnIfNewer(document);
    takeDocument(document);
    setFileAndFolders(reference);
    if (gObserver)
        gObserver->tapeLoaded(*this);
    return true;
}

bool StylusProject::loadFrom(KFile& source)
{
    KDocument document;
    prepareDocument(document);
    if (!document.loadFrom(source) || !tapeOf(document)) {
        document.clear();
        refuseDocument();
        return false;
    }
    warnIfNewer(document);
    takeDocument(document);
    return true;
}

bool StylusProject::takeClip(KFile& source)
{
    KDocument document;
    prepareDocument(document);
    if (!document.loadFrom(source) || !tapeOf(document) || document.isDataIgnored()
        || document.getVersion() > kDocumentVersion) {
        document.clear();
        return false;
    }
    takeDocument(document);
    return true;
}

bool StylusProject::readDocument(const KFileReference& reference, KDocument& document)
{
    if (tryToRead(reference, document))
        return true;
    // A file that another program is still writing may be readable soon.
    waitProcessingEvents(gRetryDelay);
    return tryToRead(reference, document);
}

void StylusProject::refuseDocument()
{
    TapeHost::get().alert(tapeTranslate("Error while reading file"),
                          tapeTranslate("This file is not a TaleLoom Document File!"));
}

// A document without the size entries keeps the tape's own size. The
// document lets go of its entries, so the project alone holds the tape.
void StylusProject::takeDocument(KDocument& document)
{
    TapePtr loaded(tapeOf(document));
    KGraphicSize size = loaded->getPageSize();
    size.setWidth(sizeEntry(document, kWidthKey, size.getWidth()));
    size.setHeight(sizeEntry(document, kHeightKey, size.getHeight()));
    loaded->setPageSize(size);
    document.clear();
    setTape(*loaded);
    loaded->getFlags().set(Tape::SavedOnce);
}

// ---- The class stream ---------------------------------------------------------

void StylusProject::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(kMainSection);
    if (tape) {
        tape->writeToFile(out, version);
    } else {
        TapePtr empty(new Tape());
        empty->writeToFile(out, version);
    }
    writer.end();
}

void StylusProject::readFromFile(KFile& in)
{
    setTape(*new Tape());
    auto readMain = [&](int32_t) { tape->readFromFile(in); };
    KClassReader::readSections(in, classRecord, { { kMainSection, readMain } });
}

void StylusProject::describe(KJsonWriter& out) const
{
    out.objectMember("file", file.get());
    out.objectMember("directory", directory.get());
    out.objectMember("mediaDirectory", mediaDirectory.get());
    out.objectMember("tape", tape.get());
}
