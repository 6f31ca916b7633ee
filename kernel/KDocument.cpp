#include "kernel/KDocument.h"

#include "kernel/KClass.h"
#include "kernel/KClassStreamState.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KTextCodec.h"

K_DEFINE_CLASS(KDocument, KNamedBag)

namespace {

KDocument::BusyProc gBusyProc = nullptr;

class BusyScope {
public:
    BusyScope()
    {
        if (gBusyProc)
            gBusyProc(true);
    }
    ~BusyScope()
    {
        if (gBusyProc)
            gBusyProc(false);
    }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

// Reading an object whose class has no file form raises code 14, which is
// fatal. In a document such an object can only come from a damaged or
// crafted file, so while a document loads that raise marks the file as
// damaged instead. Every other raise goes through as it would have.
class NoFileFormScope {
public:
    explicit NoFileFormScope(KFile& file)
    {
        if (target || KErrorHandler::getErrorMode() != KErrorHandler::Internal)
            return;
        engaged = true;
        target = &file;
        savedProc = KErrorHandler::getErrorProc();
        intercept();
    }
    ~NoFileFormScope()
    {
        if (!engaged)
            return;
        passOn();
        target = nullptr;
    }
    NoFileFormScope(const NoFileFormScope&) = delete;
    NoFileFormScope& operator=(const NoFileFormScope&) = delete;

private:
    static void intercept()
    {
        KErrorHandler::setErrorProc(&raised);
        KErrorHandler::setErrorMode(KErrorHandler::Forwarding);
    }
    static void passOn()
    {
        KErrorHandler::setErrorMode(KErrorHandler::Internal);
        KErrorHandler::setErrorProc(savedProc);
    }
    static void raised(int32_t code, const char* location)
    {
        if (code == KError::ReadNotImplemented) {
            target->setError(KError::CouldNotReadFile);
            return;
        }
        passOn();
        KErrorHandler::raiseErrorAt(code, location);
        intercept();
    }

    static inline KFile* target = nullptr;
    static inline KErrorHandler::ErrorProc savedProc = nullptr;
    bool engaged = false;
};

} // namespace

KDocument::KDocument() = default;

KDocument::KDocument(const KDocument& other)
    : KNamedBag(other)
    , file(other.file)
    , magic(other.magic)
    , version(other.version)
    , useMemoryBuffer(other.useMemoryBuffer)
{
}

KDocument& KDocument::operator=(const KDocument& other)
{
    if (this == &other)
        return *this;
    KNamedBag::operator=(other);
    file = other.file;
    magic = other.magic;
    version = other.version;
    useMemoryBuffer = other.useMemoryBuffer;
    return *this;
}

KThing* KDocument::deepCopy() const
{
    auto* copy = new KDocument();
    KNamedBagPtr entries = kAdopt(static_cast<KNamedBag*>(KNamedBag::deepCopy()));
    copy->KNamedBag::operator=(entries.getObject());
    if (file)
        copy->file = new KFileReference(*file);
    copy->magic = magic;
    copy->version = version;
    copy->useMemoryBuffer = useMemoryBuffer;
    return copy;
}

void KDocument::setFile(KFileReference& reference)
{
    if (reference.isOnHeap())
        file = reference;
    else
        file = new KFileReference(reference);
}

void KDocument::clearFile() { file.clear(); }

void KDocument::setBusyProc(BusyProc proc) { gBusyProc = proc; }

int32_t KDocument::makeMagic(const char* fourCharacters)
{
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        unsigned char c = fourCharacters && fourCharacters[0] ? static_cast<unsigned char>(*fourCharacters++) : ' ';
        value = value << 8 | c;
    }
    return int32_t(value);
}

std::string KDocument::magicCharacters(int32_t value)
{
    std::string characters;
    for (int shift = 24; shift >= 0; shift -= 8)
        characters += char(uint32_t(value) >> shift & 0xFF);
    return characters;
}

// ---- Saving -------------------------------------------------------------

bool KDocument::save()
{
    BusyScope busy;
    KFile target = file ? KFile(*file) : KFile();
    // Always collected in memory, whatever useMemoryBuffer says: writing
    // directly costs system calls for every scalar and every patched length,
    // over ten times slower, and the atomic replacement gains nothing from
    // it. The bytes are the same either way.
    target.setMode(KFileModeMemory);
    target.clearError();
    if (!target.beginAtomicWrite()) {
        fileError = target.getError();
        return false;
    }
    saveTo(target);
    // Commits only while no error is stored; otherwise the temporary file
    // goes and the target stays as it was.
    bool committed = target.commitAtomicWrite();
    fileError = target.getError();
    return committed && fileError == 0;
}

bool KDocument::saveTo(KFile& target)
{
    target.writeLong(magic);
    target.writeLong(version);
    KNamedBag::writeToFile(target, 1);
    fileError = target.getError();
    return fileError == 0;
}

// ---- Loading ------------------------------------------------------------

bool KDocument::load()
{
    BusyScope busy;
    KFile source = file ? KFile(*file) : KFile();
    if (useMemoryBuffer)
        source.setMode(KFileModeReadBuffered);
    source.clearError();
    source.open();
    if (!source.isOpen()) {
        fileError = source.getError() ? source.getError() : int32_t(KError::CouldNotOpenFile);
        return false;
    }
    bool read = loadFrom(source);
    source.close();
    fileError = source.getError();
    return read && fileError == 0;
}

bool KDocument::loadFrom(KFile& source)
{
    KClassStreamState::reset();
    dataIgnored = false;
    NoFileFormScope noFileForm(source);
    int32_t head = source.readLong();
    if (source.getError() || head != magic) {
        // Only the head says what a file is; the rest stays unread.
        fileError = source.getError();
        return false;
    }
    version = source.readLong();
    if (!source.getError())
        readBody(source);
    dataIgnored = KClassStreamState::droppedObjects() > 0 || KClassStreamState::skippedClassData() >= 1;
    fileError = source.getError();
    return fileError == 0;
}

void KDocument::readBody(KFile& source)
{
    // The body must be the bag's own stream; anything else is damage rather
    // than an empty document.
    int32_t classID = source.readLong();
    source.skipBack(4);
    if (source.getError())
        return;
    if (classID != KNamedBag::classRecord->getClassID()) {
        source.setError(KError::CouldNotReadFile);
        return;
    }
    KNamedBag::readFromFile(source);
}

void KDocument::describe(KJsonWriter& out) const
{
    out.member("magic", std::string_view(KTextCodec::toUtf8(magicCharacters(magic))));
    out.member("version", version);
    out.member("dataIgnored", dataIgnored);
    KNamedBag::describe(out);
}
