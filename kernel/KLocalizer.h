#pragma once

#include "kernel/KBag.h"
#include "kernel/KLocalizerString.h"
#include "kernel/KString.h"
#include "kernel/KTree.h"

// Turns an English text, the key, into the text of the current language.
//
// Each language other than English is a column; English is the key itself
// and has the column -1. The rows live in a binary tree that the filler
// balances once after the last row, so that a look-up is logarithmic. Every
// look-up falls back to the key: translate() never fails.
class KLocalizer : public KThing {
    K_DECLARE_CLASS(KLocalizer)
public:
    static constexpr int32_t kEnglishColumn = -1;
    static constexpr int32_t kDataBaseMagic = 0x4B214C46;
    static constexpr int32_t kDataBaseVersion = 1;
    // The name and extension of the developer's dump of the data base.
    static constexpr const char* kDataBaseName = "ST_LOCALIZER_DATABASE";
    static constexpr const char* kDataBaseExtension = "KLF";

    // The language names, in the Windows set.
    static constexpr const char* kEnglish = "English";
    static constexpr const char* kFrench = "Fran\xE7"
                                           "ais"; // "Français"
    static constexpr const char* kItalian = "Italiano";
    static constexpr const char* kGerman = "Deutsch";
    static constexpr const char* kEnglishTL = "English_TL";

    KLocalizer();
    ~KLocalizer() override;
    KLocalizer(const KLocalizer&) = delete;
    KLocalizer& operator=(const KLocalizer&) = delete;

    void describe(KJsonWriter& out) const override;

    // Empties the rows and the language list; the current language stays.
    void clear();

    // Appends a language column; existing rows get an empty slot for it.
    void addLanguage(const KString& name);
    int32_t getLanguageCount() const { return languages.getSize(); }
    // The name of a column, or null.
    const KString* getLanguageName(int32_t column) const;
    // -1 for "English" and for an unknown name.
    int32_t getLanguageColumn(const KString& name) const;
    // "English" or a known language; an unknown name changes nothing.
    void setLanguage(const KString& name);
    const KString& getLanguage() const { return currentLanguage; }
    int32_t getCurrentColumn() const { return currentColumn; }

    // Finds or makes the row of `key`; a `column` of 0 or more stores
    // `text` there.
    void addEntry(const KString& key, const KString& text, int32_t column);
    // Inserts a copy of a finished row.
    void addKey(const KLocalizerString& entry);
    // Balances the tree; fillers call it once after the last row.
    void balance();

    // The text of `key` in `column`, or the key itself.
    KString translate(const KString& key, int32_t column);
    KString translate(const KString& key);
    KString translate(const char* key);

    // When set, a look-up of an unknown key adds a row for it.
    void setAddMissing(bool add) { addMissing = add; }
    bool getAddMissing() const { return addMissing; }

    // The row of `key`, or null.
    KLocalizerString* findEntry(const KString& key) const;
    int32_t getEntryCount() const { return table.getCount(); }
    // The row at in-order (sorted) position `index`, or null.
    KLocalizerString* getEntryAt(int32_t index) const;

    // The binary data base: big-endian, the language names, then every row
    // in key order with one text per column. A file with a wrong magic is
    // ignored without a word; the rows read so far are kept otherwise.
    void readDataBaseFromFile(const KFileReference& reference);
    void writeDataBaseToFile(const KFileReference& reference);
    // Writes the data base as "ST_LOCALIZER_DATABASE.KLF" in the current
    // directory: the developer's dump.
    void dumpDataBase();

    // Resources cannot be written on this platform: each shows
    // "Not Yet Implemented!" and does nothing.
    void readDataBaseFromResource(int16_t resourceID);
    void readDataBaseFromResource(KFileReference& reference, int16_t resourceID);
    void writeDataBaseToResource(KFileReference& reference, int16_t resourceID);

private:
    // Rows are inserted on the heap: the tree holds references.
    void insertRow(KLocalizerString& row);
    bool readRows(KFile& file);
    static void writeText(KFile& file, const KString& text);
    static bool readText(KFile& file, KString& text);

    KBag languages;
    KTree table;
    KString currentLanguage;
    int32_t currentColumn = kEnglishColumn;
    bool addMissing = false;
};

using KLocalizerPtr = KPtr<KLocalizer>;

// Marks a key that the code keeps in a table and translates where it shows
// it: the catalogue's extraction knows this call, the program ignores it.
constexpr const char* kTranslatable(const char* key) { return key; }
