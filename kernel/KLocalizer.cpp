#include "kernel/KLocalizer.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"

namespace {

// The smallest class stream of a string (class head, one section head, the
// character set and the length): counts read from a file are checked
// against it before anything is allocated.
constexpr int32_t kMinimalTextStream = 30;

} // namespace

K_DEFINE_CLASS(KLocalizer, KThing)

KLocalizer::KLocalizer()
    : currentLanguage(kEnglish)
{
}

KLocalizer::~KLocalizer() = default;

void KLocalizer::describe(KJsonWriter& out) const
{
    out.key("languages");
    out.beginArray();
    for (int32_t column = 0; column < getLanguageCount(); ++column)
        out.value(*getLanguageName(column));
    out.endArray();
    out.member("currentLanguage", currentLanguage);
    out.member("currentColumn", currentColumn);
    out.member("addMissing", addMissing);
    out.member("rows", getEntryCount());
}

void KLocalizer::clear()
{
    table.clearRoot();
    languages.clear();
}

// --- Languages ----------------------------------------------------------------

void KLocalizer::addLanguage(const KString& name)
{
    languages.add(*new KString(name));
    int32_t columns = getLanguageCount();
    for (int32_t i = 0; i < getEntryCount(); ++i)
        getEntryAt(i)->setColumnCount(columns);
}

const KString* KLocalizer::getLanguageName(int32_t column) const
{
    if (column < 0 || column >= getLanguageCount())
        return nullptr;
    return static_cast<const KString*>(languages.getAt(column));
}

int32_t KLocalizer::getLanguageColumn(const KString& name) const
{
    if (name == kEnglish)
        return kEnglishColumn;
    for (int32_t column = 0; column < getLanguageCount(); ++column) {
        const KString* language = getLanguageName(column);
        if (language && *language == name)
            return column;
    }
    return kEnglishColumn;
}

void KLocalizer::setLanguage(const KString& name)
{
    int32_t column = getLanguageColumn(name);
    if (column == kEnglishColumn && name != kEnglish)
        return;
    currentLanguage = name;
    currentColumn = column;
}

// --- Rows -----------------------------------------------------------------------

KLocalizerString* KLocalizer::findEntry(const KString& key) const
{
    KString probe(key);
    KTreeNodePtr node;
    if (!table.find(probe, node) || !node)
        return nullptr;
    return dynamic_cast<KLocalizerString*>(node->getData());
}

KLocalizerString* KLocalizer::getEntryAt(int32_t index) const
{
    KTreeNode* node = table.getAt(index);
    return node ? dynamic_cast<KLocalizerString*>(node->getData()) : nullptr;
}

void KLocalizer::insertRow(KLocalizerString& row)
{
    KLocalizerStringPtr held(row);
    table.insert(row);
}

void KLocalizer::addEntry(const KString& key, const KString& text, int32_t column)
{
    KLocalizerString* row = findEntry(key);
    if (!row) {
        row = new KLocalizerString(key);
        row->setColumnCount(getLanguageCount());
        insertRow(*row);
    }
    if (column >= 0)
        row->setTranslation(column, text);
}

void KLocalizer::addKey(const KLocalizerString& entry) { insertRow(*new KLocalizerString(entry)); }

void KLocalizer::balance() { table.balance(); }

// --- Look-up ---------------------------------------------------------------------

KString KLocalizer::translate(const KString& key, int32_t column)
{
    KString result(key);
    if (column < 0 || column >= getLanguageCount())
        return result;
    if (KLocalizerString* row = findEntry(key)) {
        if (const KString* text = row->getTranslation(column))
            result = *text;
        return result;
    }
    // The new row stays where insertion put it until the next balance().
    if (addMissing)
        addEntry(key, key, column);
    return result;
}

KString KLocalizer::translate(const KString& key) { return translate(key, currentColumn); }

KString KLocalizer::translate(const char* key) { return translate(KString(key), currentColumn); }

// --- Data base ---------------------------------------------------------------------

void KLocalizer::writeText(KFile& file, const KString& text)
{
    // A row writes what its key string writes.
    KString plain(text);
    plain.writeToFile(file, 1);
}

// Reads one string stream; anything but a string ends the reading quietly
// rather than raising a class mismatch.
bool KLocalizer::readText(KFile& file, KString& text)
{
    if (!file.checkAvailable(kMinimalTextStream))
        return false;
    int32_t start = file.getPosition();
    int32_t classID = file.readLong();
    if (file.getError() || classID != KString::classRecord->getClassID())
        return false;
    file.setPosition(start);
    text.readFromFile(file);
    return file.getError() == 0;
}

void KLocalizer::writeDataBaseToFile(const KFileReference& reference)
{
    KFile file(reference);
    // Class streams patch their section lengths, so the file must seek.
    file.setMode(KFileModeMemory);
    if (!file.beginAtomicWrite())
        return;
    file.writeLong(kDataBaseMagic);
    file.writeLong(kDataBaseVersion);
    file.writeLong(getLanguageCount());
    for (int32_t column = 0; column < getLanguageCount(); ++column)
        writeText(file, *getLanguageName(column));
    file.writeLong(getEntryCount());
    static const KString empty;
    for (int32_t i = 0; i < getEntryCount(); ++i) {
        KLocalizerString* row = getEntryAt(i);
        writeText(file, *row);
        for (int32_t column = 0; column < getLanguageCount(); ++column) {
            const KString* text = row->getTranslation(column);
            writeText(file, text ? *text : empty);
        }
    }
    file.close();
}

bool KLocalizer::readRows(KFile& file)
{
    int32_t languageCount = file.readLong();
    if (file.getError() || !file.checkAvailable(int64_t(languageCount) * kMinimalTextStream))
        return false;
    for (int32_t column = 0; column < languageCount; ++column) {
        KString name;
        if (!readText(file, name))
            return false;
        addLanguage(name);
    }
    int32_t rowCount = file.readLong();
    int64_t rowSize = int64_t(languageCount + 1) * kMinimalTextStream;
    if (file.getError() || !file.checkAvailable(rowCount * rowSize))
        return false;
    for (int32_t i = 0; i < rowCount; ++i) {
        KLocalizerStringPtr row(new KLocalizerString());
        if (!readText(file, *row))
            return false;
        row->setColumnCount(languageCount);
        for (int32_t column = 0; column < languageCount; ++column) {
            KString text;
            if (!readText(file, text))
                return false;
            row->setTranslation(column, text);
        }
        insertRow(*row);
    }
    return true;
}

void KLocalizer::readDataBaseFromFile(const KFileReference& reference)
{
    clear();
    KFile file(reference);
    file.setMode(KFileModeReadBuffered);
    if (!file.doesExist())
        return;
    file.open();
    if (file.getError() || !file.isOpen())
        return;
    if (file.readLong() == kDataBaseMagic && file.getError() == 0) {
        file.readLong(); // the version: every version is read alike
        readRows(file);
    }
    file.close();
    balance();
}

void KLocalizer::dumpDataBase()
{
    KPath path(KFileSystem::get().getCurrentDirectory().getPath());
    path.setName(kDataBaseName);
    path.setExtension(kDataBaseExtension);
    writeDataBaseToFile(KFileReference(path));
}

void KLocalizer::readDataBaseFromResource(int16_t) { KErrorHandler::notice("Not Yet Implemented!"); }

void KLocalizer::readDataBaseFromResource(KFileReference&, int16_t) { KErrorHandler::notice("Not Yet Implemented!"); }

void KLocalizer::writeDataBaseToResource(KFileReference&, int16_t) { KErrorHandler::notice("Not Yet Implemented!"); }
