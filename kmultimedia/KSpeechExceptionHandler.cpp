#include "kmultimedia/KSpeechExceptionHandler.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileSystem.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "windowing/KServices.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

K_DEFINE_CLASS(KSpeechExceptionHandler, KString)

namespace {

KSpeechExceptionHandler* gCurrentHandler = nullptr;

fs::path hostPath(const KFileReference& reference) { return fs::path(KTextCodec::toUtf8(reference.getNativeText())); }

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string lowerKey(const KString& word) { return std::string(word.getLower().c_str()); }

bool lessByKey(const KSpeechException* a, const KSpeechException* b) { return a->compare(*b) < 0; }

} // namespace

KSpeechExceptionHandler::KSpeechExceptionHandler()
    : KSpeechExceptionHandler(defaultFile())
{
}

KSpeechExceptionHandler::KSpeechExceptionHandler(const KFileReference& dictionary)
    : file(dictionary)
{
    gCurrentHandler = this;
    reload();
}

KSpeechExceptionHandler::~KSpeechExceptionHandler()
{
    if (gCurrentHandler == this)
        gCurrentHandler = nullptr;
}

KSpeechExceptionHandler* KSpeechExceptionHandler::current() { return gCurrentHandler; }

KFileReference KSpeechExceptionHandler::defaultFile()
{
    KPath data = KFileSystem::get().getUserApplicationDataDirectory().getPath();
    return KFileReference(data.getChildFolder("TaleLoom").getChildFile("KSpeechExceptions.DAT"));
}

bool KSpeechExceptionHandler::isWordForm(const KString& written)
{
    if (written.isEmpty())
        return false;
    for (int32_t i = 0; i < written.getLength(); ++i) {
        if (isBlank(written[i]))
            return false;
    }
    return true;
}

KSpeechExceptionHandler::ReadResult KSpeechExceptionHandler::readStream(KFile& in, int32_t& version,
                                                                        std::vector<KSpeechExceptionPtr>& out)
{
    out.clear();
    version = 0;
    int32_t magic = in.readLong();
    if (in.getError() || magic != kMagic)
        return ReadResult::NotExceptions;
    version = in.readLong();
    int32_t count = in.readLong();
    if (in.getError() || count < 0)
        return ReadResult::Damaged;
    const int32_t recordClass = KClass::computeClassID("KSpeechException");
    for (int32_t i = 0; i < count; ++i) {
        // Each record is a whole class stream: its class id comes first, so
        // a record of anything else is damage, found before reading it.
        int32_t start = in.getPosition();
        int32_t tag = in.readLong();
        if (in.getError() || tag != recordClass)
            return ReadResult::Damaged;
        in.setPosition(start);
        KSpeechExceptionPtr record = kAdopt(new KSpeechException());
        record->readFromFile(in);
        if (in.getError())
            return ReadResult::Damaged;
        out.push_back(record);
    }
    return ReadResult::Read;
}

void KSpeechExceptionHandler::writeStream(KFile& out, const std::vector<KSpeechException*>& entries)
{
    out.writeLong(kMagic);
    out.writeLong(kFileVersion);
    out.writeLong(int32_t(entries.size()));
    for (KSpeechException* entry : entries)
        entry->writeToFile(out, 1);
}

KSpeechExceptionHandler::ReadResult KSpeechExceptionHandler::reload()
{
    std::vector<KSpeechExceptionPtr> records;
    damagedOnDisk = false;
    if (!file.doesExist()) {
        readResult = ReadResult::Missing;
    } else {
        KFile in(file);
        in.setMode(KFileModeReadBuffered);
        in.open();
        int32_t version = 0;
        readResult = in.isOpen() && !in.getError() ? readStream(in, version, records) : ReadResult::Damaged;
        in.close();
    }
    // What came before the damage is kept; only a file of another kind
    // counts as no dictionary at all.
    if (readResult == ReadResult::NotExceptions)
        records.clear();
    fill(records);
    if (readResult == ReadResult::Damaged) {
        damagedOnDisk = true;
        warnDamaged();
    }
    return readResult;
}

// A later record of the same written form replaces the earlier one, as
// adding it would.
void KSpeechExceptionHandler::fill(std::vector<KSpeechExceptionPtr>& records)
{
    std::vector<KSpeechException*> entries;
    entries.reserve(records.size());
    for (KSpeechExceptionPtr& record : records) {
        if (!record->isEmpty())
            entries.push_back(record.get());
    }
    std::stable_sort(entries.begin(), entries.end(), lessByKey);
    std::vector<KSpeechException*> unique;
    unique.reserve(entries.size());
    for (KSpeechException* entry : entries) {
        if (!unique.empty() && unique.back()->compare(*entry) == 0)
            unique.back() = entry;
        else
            unique.push_back(entry);
    }
    rebuild(std::move(unique));
}

// Sorted entries go in middle first, so the tree is near balanced while it
// is built and never degenerates into a list on the way.
void KSpeechExceptionHandler::rebuild(std::vector<KSpeechException*> sorted)
{
    // The old tree may hold the only references to the entries.
    std::vector<KSpeechExceptionPtr> keep(sorted.begin(), sorted.end());
    exceptions.clearRoot();
    insertBalanced(sorted, 0, sorted.size());
    exceptions.balance();
    rebuildCaseIndex();
}

void KSpeechExceptionHandler::insertBalanced(const std::vector<KSpeechException*>& sorted, size_t low, size_t high)
{
    if (low >= high)
        return;
    size_t middle = low + (high - low) / 2;
    exceptions.insert(*sorted[middle]);
    insertBalanced(sorted, low, middle);
    insertBalanced(sorted, middle + 1, high);
}

void KSpeechExceptionHandler::rebuildCaseIndex()
{
    byLowerCase.clear();
    for (KSpeechException* entry : getEntries())
        byLowerCase.emplace(lowerKey(*entry), entry);
}

std::vector<KSpeechException*> KSpeechExceptionHandler::getEntries() const
{
    std::vector<KSpeechException*> entries;
    entries.reserve(size_t(std::max(0, exceptions.getCount())));
    std::vector<KTreeNode*> pending;
    KTreeNode* node = exceptions.getRoot();
    while (node || !pending.empty()) {
        while (node) {
            pending.push_back(node);
            node = node->getLeft();
        }
        node = pending.back();
        pending.pop_back();
        if (auto* entry = dynamic_cast<KSpeechException*>(node->getData()))
            entries.push_back(entry);
        node = node->getRight();
    }
    return entries;
}

KSpeechException* KSpeechExceptionHandler::findExact(const KString& word) const
{
    KString probe(word);
    KTreeNodePtr found;
    if (!exceptions.find(probe, found))
        return nullptr;
    return dynamic_cast<KSpeechException*>(found->getData());
}

const KSpeechException* KSpeechExceptionHandler::find(const KString& word) const
{
    if (word.isEmpty())
        return nullptr;
    if (KSpeechException* exact = findExact(word))
        return exact;
    auto it = byLowerCase.find(lowerKey(word));
    return it == byLowerCase.end() ? nullptr : it->second;
}

bool KSpeechExceptionHandler::add(const KString& written, const KString& spoken)
{
    if (!isWordForm(written))
        return false;
    if (KSpeechException* entry = findExact(written)) {
        entry->setSpoken(spoken);
        return true;
    }
    KSpeechExceptionPtr entry = kAdopt(new KSpeechException(written, spoken));
    exceptions.insert(*entry);
    exceptions.balance();
    rebuildCaseIndex();
    return true;
}

bool KSpeechExceptionHandler::remove(const KString& written)
{
    KSpeechException* gone = findExact(written);
    if (!gone)
        return false;
    std::vector<KSpeechException*> entries = getEntries();
    KSpeechExceptionPtr keepAlive(gone);
    entries.erase(std::remove(entries.begin(), entries.end(), gone), entries.end());
    rebuild(std::move(entries));
    return true;
}

void KSpeechExceptionHandler::setEntries(std::vector<KSpeechExceptionPtr> entries) { fill(entries); }

void KSpeechExceptionHandler::removeAll()
{
    exceptions.clearRoot();
    byLowerCase.clear();
}

bool KSpeechExceptionHandler::copyAsideDamaged()
{
    fs::path damaged = hostPath(file);
    std::error_code failure;
    if (!fs::exists(damaged, failure))
        return true;
    fs::path aside = damaged;
    aside += ".bak";
    return fs::copy_file(damaged, aside, fs::copy_options::overwrite_existing, failure) && !failure;
}

bool KSpeechExceptionHandler::save()
{
    if (file.getPath().isEmpty())
        return false;
    std::error_code failure;
    fs::create_directories(hostPath(file).parent_path(), failure);
    if (damagedOnDisk && !copyAsideDamaged())
        return false;
    KFile out(file);
    out.setMode(KFileModeMemory);
    out.clearError();
    if (!out.beginAtomicWrite())
        return false;
    writeStream(out, getEntries());
    if (!out.commitAtomicWrite() || out.getError() != 0)
        return false;
    damagedOnDisk = false;
    warned = false;
    readResult = ReadResult::Read;
    return true;
}

void KSpeechExceptionHandler::warnDamaged()
{
    if (warned)
        return;
    warned = true;
    KString text = kTranslate("The speech exceptions file is damaged. The exceptions read before the damage are kept, "
                              "and the file is copied aside before it is next saved.");
    KErrorHandler::showMessage(text.c_str(), kTranslate("Speech Exceptions").c_str(), KErrorHandler::kNoticeBoxFlags);
}
