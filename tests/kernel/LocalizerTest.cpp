#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KLocalizer.h"
#include "kernel/KLocalizerData.h"
#include "kernel/KTextCodec.h"
#include "tests/kernel/FileTestSupport.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::string text(const KString& s) { return std::string(s.c_str()); }

// A localizer with the system's four columns, in their fixed order.
void addSystemLanguages(KLocalizer& localizer)
{
    for (const auto& language : KLocalizerData::kLanguageFiles)
        localizer.addLanguage(language.language);
}

// Rows filled the way the fillers fill them: one call per language that
// has a text, then one balance.
void fillSample(KLocalizer& localizer)
{
    addSystemLanguages(localizer);
    int32_t french = localizer.getLanguageColumn(KLocalizer::kFrench);
    int32_t italian = localizer.getLanguageColumn("Italiano");
    int32_t german = localizer.getLanguageColumn("Deutsch");
    localizer.addEntry("Play", "Action", french);
    localizer.addEntry("Play", "Azione", italian);
    localizer.addEntry("Play", "Abspielen", german);
    localizer.addEntry("Stop", "Stopp", german);
    localizer.addEntry("Cancel", "Annuler", french);
    localizer.addEntry("Cancel", "", italian);
    localizer.addEntry("Undo", "Undo", italian);
    localizer.balance();
}

std::vector<std::string> keysInOrder(const KLocalizer& localizer)
{
    std::vector<std::string> keys;
    for (int32_t i = 0; i < localizer.getEntryCount(); ++i)
        keys.push_back(text(*localizer.getEntryAt(i)));
    return keys;
}

// The source tree's data folder: from the environment ctest sets, else
// found from this file's place in the tree.
std::string sourceDataFolder()
{
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    if (source && *source)
        return std::string(source) + "/data";
    return (std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() / "data").string();
}

std::string sourceData() { return sourceDataFolder() + "/locale"; }

std::vector<std::string> readKeys()
{
    std::vector<std::string> keys;
    std::ifstream in(sourceData() + "/keys.txt");
    std::string line;
    while (std::getline(in, line)) {
        std::string key, error;
        if (!line.empty() && KLocalizerData::unescape(line, key, error))
            keys.push_back(key);
    }
    return keys;
}

} // namespace

TEST(LocalizerTest, LooksUpPerLanguageAndFallsBackToTheKey)
{
    KLocalizerPtr localizer(new KLocalizer());
    fillSample(*localizer);
    EXPECT_EQ(localizer->getLanguageColumn("English"), -1);
    EXPECT_EQ(localizer->getLanguageColumn("Klingon"), -1);
    EXPECT_EQ(localizer->getLanguageColumn("English_TL"), 3);

    EXPECT_EQ(text(localizer->translate("Play", 0)), "Action");
    EXPECT_EQ(text(localizer->translate("Play", 1)), "Azione");
    EXPECT_EQ(text(localizer->translate("Play", 2)), "Abspielen");
    // German only: the other languages see the key.
    EXPECT_EQ(text(localizer->translate("Stop", 1)), "Stop");
    EXPECT_EQ(text(localizer->translate("Stop", 2)), "Stopp");
    // English_TL has no text here, column -1 and a column past the end
    // always give the key, with or without a row.
    EXPECT_EQ(text(localizer->translate("Play", 3)), "Play");
    EXPECT_EQ(text(localizer->translate("Play", -1)), "Play");
    EXPECT_EQ(text(localizer->translate("Play", 4)), "Play");
    EXPECT_EQ(text(localizer->translate("Nowhere", -1)), "Nowhere");
    EXPECT_EQ(text(localizer->translate("Nowhere", 0)), "Nowhere");
    // An empty text is a translation; a text equal to the key is stored.
    EXPECT_EQ(text(localizer->translate("Cancel", 1)), "");
    ASSERT_NE(localizer->findEntry("Undo"), nullptr);
    EXPECT_NE(localizer->findEntry("Undo")->getTranslation(1), nullptr);
    // Keys are bytes: no case folding.
    EXPECT_EQ(text(localizer->translate("play", 0)), "play");
    // addEntry looks up first: no second row for a key.
    EXPECT_EQ(localizer->getEntryCount(), 4);
}

TEST(LocalizerTest, SwitchesLanguageOnlyToKnownNames)
{
    KLocalizerPtr localizer(new KLocalizer());
    fillSample(*localizer);
    EXPECT_EQ(text(localizer->getLanguage()), "English");
    EXPECT_EQ(localizer->getCurrentColumn(), -1);
    EXPECT_EQ(text(localizer->translate("Play")), "Play");

    localizer->setLanguage(KLocalizer::kFrench);
    EXPECT_EQ(localizer->getCurrentColumn(), 0);
    EXPECT_EQ(text(localizer->translate("Play")), "Action");
    EXPECT_EQ(text(localizer->translate(KString("Cancel"))), "Annuler");

    localizer->setLanguage("Klingon");
    EXPECT_EQ(localizer->getCurrentColumn(), 0);
    EXPECT_EQ(text(localizer->getLanguage()), KLocalizer::kFrench);

    localizer->setLanguage("Deutsch");
    EXPECT_EQ(text(localizer->translate("Play")), "Abspielen");
    localizer->setLanguage("English");
    EXPECT_EQ(localizer->getCurrentColumn(), -1);
    EXPECT_EQ(text(localizer->translate("Play")), "Play");
}

TEST(LocalizerTest, RowsKeepTheirColumnsAndOrder)
{
    KLocalizerPtr localizer(new KLocalizer());
    localizer->addLanguage("Italiano");
    localizer->addEntry("b", "B", 0);
    localizer->addEntry("a", "", -1);
    // A language added later gives every row an empty slot.
    localizer->addLanguage("Deutsch");
    EXPECT_EQ(localizer->findEntry("a")->getColumnCount(), 2);
    EXPECT_EQ(localizer->findEntry("a")->getTranslation(1), nullptr);

    // Filled in sorted order the tree is a list; balancing keeps the order.
    for (char c = 'c'; c <= 'z'; ++c)
        localizer->addEntry(std::string(1, c).c_str(), "x", 1);
    auto before = keysInOrder(*localizer);
    localizer->balance();
    EXPECT_EQ(keysInOrder(*localizer), before);
    EXPECT_TRUE(std::is_sorted(before.begin(), before.end()));

    KLocalizerString row("Key");
    row.setTranslation(2, "Zwei");
    EXPECT_EQ(row.getColumnCount(), 3);
    EXPECT_EQ(row.getTranslation(0), nullptr);
    EXPECT_EQ(row.getTranslation(7), nullptr);
    row.removeColumn(0);
    EXPECT_EQ(row.getColumnCount(), 3);
    row.removeColumn(2);
    EXPECT_EQ(row.getColumnCount(), 2);
    KLocalizerString copy(row);
    row.setTranslation(1, "One");
    EXPECT_EQ(copy.getTranslation(1), nullptr);
    localizer->addKey(row);
    EXPECT_EQ(text(*localizer->findEntry("Key")->getTranslation(1)), "One");
}

TEST(LocalizerTest, AddsMissingKeysAndWritesThemToTheDataBase)
{
    filetest::TempFolder folder;
    KLocalizerPtr localizer(new KLocalizer());
    fillSample(*localizer);
    localizer->setAddMissing(true);
    localizer->setLanguage("Italiano");
    EXPECT_EQ(text(localizer->translate("Brand new")), "Brand new");
    ASSERT_NE(localizer->findEntry("Brand new"), nullptr);
    EXPECT_EQ(text(*localizer->findEntry("Brand new")->getTranslation(1)), "Brand new");
    // Column -1 never adds.
    localizer->translate("Only English", -1);
    EXPECT_EQ(localizer->findEntry("Only English"), nullptr);

    KFileReference file(folder.pathOf("ST_LOCALIZER_DATABASE.KLF"));
    localizer->writeDataBaseToFile(file);
    auto bytes = filetest::bytesOf(folder.file("ST_LOCALIZER_DATABASE.KLF"));
    ASSERT_GE(bytes.size(), 12u);
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 12),
              (std::vector<uint8_t> { 0x4B, 0x21, 0x4C, 0x46, 0, 0, 0, 1, 0, 0, 0, 4 }));

    KLocalizerPtr read(new KLocalizer());
    read->addLanguage("stale");
    read->readDataBaseFromFile(file);
    EXPECT_EQ(read->getLanguageCount(), 4);
    EXPECT_EQ(text(*read->getLanguageName(0)), KLocalizer::kFrench);
    EXPECT_EQ(keysInOrder(*read), keysInOrder(*localizer));
    EXPECT_EQ(text(read->translate("Brand new", 1)), "Brand new");
    EXPECT_EQ(text(read->translate("Play", 2)), "Abspielen");
    // Empty slots come back as empty strings, which count as translations.
    EXPECT_EQ(text(read->translate("Stop", 0)), "");
}

TEST(LocalizerTest, IgnoresABadDataBaseAndDumpsToTheCurrentFolder)
{
    filetest::TempFolder folder;
    filetest::CurrentDirectoryGuard guard;
    ErrorRecorder errors;
    KLocalizerPtr localizer(new KLocalizer());
    fillSample(*localizer);

    filetest::writeBytes(folder.file("bad.KLF"), { 0, 1, 2, 3, 4, 5, 6, 7 });
    KLocalizerPtr read(new KLocalizer());
    read->readDataBaseFromFile(KFileReference(folder.pathOf("bad.KLF")));
    EXPECT_EQ(read->getEntryCount(), 0);

    // A right head with a huge row count and a truncated body.
    filetest::writeBytes(folder.file("short.KLF"), { 0x4B, 0x21, 0x4C, 0x46, 0, 0, 0, 1, 0, 0, 0, 0, 0x7F, 0, 0, 0 });
    read->readDataBaseFromFile(KFileReference(folder.pathOf("short.KLF")));
    EXPECT_EQ(read->getEntryCount(), 0);
    read->readDataBaseFromFile(KFileReference(folder.pathOf("missing.KLF")));
    EXPECT_TRUE(errors.empty());

    std::filesystem::current_path(folder.path());
    localizer->dumpDataBase();
    EXPECT_TRUE(std::filesystem::exists(folder.file("ST_LOCALIZER_DATABASE.KLF")));
    KLocalizerPtr fresh(new KLocalizer());
    fresh->readDataBaseFromFile(KFileReference(folder.pathOf("ST_LOCALIZER_DATABASE.KLF")));
    EXPECT_EQ(fresh->getEntryCount(), localizer->getEntryCount());
    // A localizer that read a bad file reads a good one afterwards.
    read->readDataBaseFromFile(KFileReference(folder.pathOf("ST_LOCALIZER_DATABASE.KLF")));
    EXPECT_EQ(read->getEntryCount(), localizer->getEntryCount());
}

TEST(LocalizerTest, DataFileReaderReportsAndSkipsBadLines)
{
    std::string contents = "# comment\n"
                           "\n"
                           "Play\tJouer\n"
                           "No tab here\n"
                           "Too\tmany\ttabs\n"
                           "Bad escape\\q\tx\n"
                           "Two\\nlines\tDeux\\nlignes\\tet\\\\\n"
                           "\\#Hash\tDièse\n"
                           "Save...\tEnregistrer\n"
                           "Save Changes To \tEnregistrer les modifications dans\n"
                           "Page %d of %d\tPage %d\n"
                           "Play\tAgain\n"
                           "Empty\t\n"
                           "Latin\t\xC3\x28\n"
                           "Greek\t\xCE\xB1\r\n"
                           "Open\tOuvrir";
    auto parsed = KLocalizerData::parse(contents, "fr.txt");
    ASSERT_EQ(parsed.entries.size(), 4u);
    EXPECT_EQ(parsed.entries[0].key, "Play");
    EXPECT_EQ(parsed.entries[0].line, 3);
    EXPECT_EQ(parsed.entries[1].key, "Two\nlines");
    EXPECT_EQ(parsed.entries[1].text, "Deux\nlignes\tet\\");
    EXPECT_EQ(parsed.entries[2].key, "#Hash");
    EXPECT_EQ(parsed.entries[3].text, "Ouvrir");
    std::vector<int32_t> badLines;
    for (const auto& problem : parsed.problems) {
        EXPECT_EQ(problem.file, "fr.txt");
        badLines.push_back(problem.line);
    }
    EXPECT_EQ(badLines, (std::vector<int32_t> { 4, 5, 6, 9, 10, 11, 12, 13, 14, 15 }));

    EXPECT_EQ(KLocalizerData::escape("#a\tb\nc\\"), "\\#a\\tb\\nc\\\\");
    EXPECT_EQ(KLocalizerData::placeholders("%1 of {count} at 100%"), (std::vector<std::string> { "%1", "{count}" }));
    EXPECT_EQ(KLocalizerData::checkTranslation("&File", "Fichier"), "the translation drops the accelerator \"&\"");
    EXPECT_EQ(KLocalizerData::checkTranslation("Copy %s", "Copier %s"), "");

    // Loading stores Windows-set text; bad lines never stop it.
    filetest::TempFolder folder;
    std::ofstream(folder.file("fr.txt")) << contents;
    KLocalizerPtr localizer(new KLocalizer());
    addSystemLanguages(*localizer);
    EXPECT_EQ(KLocalizerData::loadLanguageFile(*localizer, 0, folder.file("fr.txt")), 4);
    EXPECT_EQ(text(localizer->translate("#Hash", 0)), "Di\xE8se");
    EXPECT_EQ(KLocalizerData::loadLanguageFile(*localizer, 0, folder.file("none.txt")), 0);
}

TEST(LocalizerTest, BaseLocalizerReadsTheDataFolder)
{
    EXPECT_EQ(text(kBaseTranslate("Cancel")), "Cancel");
    setenv("TALELOOM_DATA_DIR", sourceDataFolder().c_str(), 1);
    kCreateBaseLocalizer();
    unsetenv("TALELOOM_DATA_DIR");
    KLocalizer* base = kBaseLocalizer();
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(base->getLanguageCount(), 4);
    base->setLanguage(KLocalizer::kFrench);
    EXPECT_EQ(text(kBaseTranslate("Cancel")), "Annuler");
    base->setLanguage("Italiano");
    EXPECT_EQ(text(kBaseTranslate("Cancel")), "Annulla");
    base->setLanguage("Deutsch");
    EXPECT_EQ(text(kBaseTranslate("Cancel")), "Abbrechen");
    EXPECT_EQ(text(kBaseTranslate("A key nobody wrote")), "A key nobody wrote");
    kDestroyBaseLocalizer();
    EXPECT_EQ(kBaseLocalizer(), nullptr);
}

// Every data file must parse cleanly and keep its keys' placeholders.
TEST(LocalizerTest, DataFilesAreClean)
{
    for (const auto& language : KLocalizerData::kLanguageFiles) {
        std::string path = sourceData() + "/" + language.fileName;
        if (!std::filesystem::exists(path))
            continue;
        auto parsed = KLocalizerData::readFile(path);
        EXPECT_TRUE(parsed.opened) << path;
        for (const auto& problem : parsed.problems)
            ADD_FAILURE() << problem.file << ":" << problem.line << ": " << problem.message;
    }
}

// Lists, per language, the keys that have no translation yet and the
// translations whose key is no longer in keys.txt. Informative only.
TEST(LocalizerTest, ListsMissingTranslations)
{
    auto keys = readKeys();
    ASSERT_FALSE(keys.empty()) << "no keys.txt under " << sourceData();
    std::set<std::string> known(keys.begin(), keys.end());
    for (const auto& language : { "fr.txt", "it.txt", "de.txt" }) {
        auto parsed = KLocalizerData::readFile(sourceData() + "/" + language);
        std::set<std::string> translated;
        for (const auto& entry : parsed.entries) {
            translated.insert(entry.key);
            if (!known.count(entry.key))
                std::printf("%s: translation of a key not in keys.txt: \"%s\"\n", language, entry.key.c_str());
        }
        int missing = 0;
        for (const auto& key : keys) {
            if (!translated.count(key)) {
                ++missing;
                std::printf("%s: missing \"%s\"\n", language, key.c_str());
            }
        }
        std::printf("%s: %d of %zu keys translated, %d missing\n", language, int(keys.size()) - missing, keys.size(),
                    missing);
    }
}
