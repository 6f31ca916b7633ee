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
    for (const char* language : KLocalizerData::kLanguages)
        localizer.addLanguage(language);
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

TEST(LocalizerTest, BaseLocalizerHoldsTheCompiledTranslations)
{
    EXPECT_EQ(text(kBaseTranslate("Cancel")), "Cancel");
    kCreateBaseLocalizer();
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
    // Texts arrive in the Windows set.
    base->setLanguage(KLocalizer::kFrench);
    EXPECT_EQ(text(kBaseTranslate("Venetian Blinds")), "Store v\xE9nitien");
    // A second fill finds its columns and adds no row.
    int32_t rows = base->getEntryCount();
    KLocalizerData::fill(*base);
    EXPECT_EQ(base->getLanguageCount(), 4);
    EXPECT_EQ(base->getEntryCount(), rows);
    kDestroyBaseLocalizer();
    EXPECT_EQ(kBaseLocalizer(), nullptr);
}

// Messages with numbered arguments come out as whole sentences in every
// language, arguments where the language puts them.
struct SentenceCase {
    const char* language;
    const char* key;
    std::vector<KString> arguments;
    const char* expected; // Windows set
};

class LocalizerSentenceTest : public testing::TestWithParam<SentenceCase> { };

TEST_P(LocalizerSentenceTest, RendersTheWholeSentence)
{
    const SentenceCase& sentence = GetParam();
    KLocalizerPtr localizer(new KLocalizer());
    KLocalizerData::fill(*localizer);
    localizer->setLanguage(sentence.language);
    KString translated = localizer->translate(sentence.key);
    const auto& a = sentence.arguments;
    KString rendered = a.size() == 1 ? translated.withArguments({ a[0] }) : translated.withArguments({ a[0], a[1] });
    EXPECT_EQ(text(rendered), sentence.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, LocalizerSentenceTest,
    testing::Values(
        SentenceCase {
            "English", "The actor file is missing: %1", { "Cat.act" }, "The actor file is missing: Cat.act" },
        SentenceCase { KLocalizer::kFrench,
                       "The actor file is missing: %1",
                       { "Cat.act" },
                       "Le fichier de l'acteur est introuvable\xA0: Cat.act" },
        SentenceCase { "Italiano", "Not listed: %1", { "3" }, "Non elencati: 3" },
        SentenceCase { "Deutsch", "Look for missing file: %1", { "Bild.png" }, "Fehlende Datei suchen: Bild.png" },
        SentenceCase { KLocalizer::kFrench,
                       "This document's resolution (%1) exceeds the screen resolution (%2); this document cannot be "
                       "opened.",
                       { "1024,768", "800,600" },
                       "La r\xE9solution de ce document (1024,768) d\xE9passe la r\xE9solution de l'\xE9"
                       "cran "
                       "(800,600)\xA0; ce document ne peut pas \xEAtre ouvert." },
        SentenceCase { "Italiano",
                       "This actor's resolution (%1) exceeds the screen resolution (%2); this actor cannot be opened "
                       "for editing.",
                       { "1024x768", "800x600" },
                       "La risoluzione di questo attore (1024x768) supera la risoluzione dello schermo (800x600); "
                       "questo attore non pu\xF2 essere aperto per la modifica." },
        SentenceCase { "Deutsch",
                       "This actor's resolution (%1) exceeds the screen resolution (%2); this actor cannot be opened "
                       "for editing.",
                       { "1024x768", "800x600" },
                       "Die Aufl\xF6sung dieses Darstellers (1024x768) \xFC"
                       "berschreitet die Bildschirmaufl\xF6sung "
                       "(800x600); dieser Darsteller kann nicht zum Bearbeiten ge\xF6"
                       "ffnet werden." }));
