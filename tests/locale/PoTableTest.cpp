#include "tools/po-table/PoCatalogue.h"
#include "tools/po-table/TranslationCheck.h"
#include "tools/po-table/TranslationTable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <string>
#include <vector>

namespace {

const char* const kHeader = "msgid \"\"\n"
                            "msgstr \"\"\n"
                            "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                            "\n";

PoCatalogue po(const std::string& body, const char* name = "fr.po") { return parsePo(kHeader + body, name); }

std::vector<int32_t> problemLines(const std::vector<PoProblem>& problems)
{
    std::vector<int32_t> lines;
    for (const PoProblem& problem : problems)
        lines.push_back(problem.line);
    return lines;
}

std::vector<std::string> keysOf(const std::vector<TranslationRow>& rows)
{
    std::vector<std::string> keys;
    for (const TranslationRow& row : rows)
        keys.push_back(row.key);
    return keys;
}

} // namespace

TEST(PoCatalogueTest, ReadsEntriesAsTranslationToolsWriteThem)
{
    auto catalogue = po("#. TRANSLATORS: a piece\n"
                        "#: app/Actor.cpp\n"
                        "msgid \"Play\"\n"
                        "msgstr \"Lecture\"\n"
                        "\n"
                        "msgid \"\"\n"
                        "\"Two \\\"quoted\\\"\\n\"\n"
                        "\"lines\\tand \\\\ \\303\\251\"\n"
                        "msgstr \"\"\n"
                        "\"Deux\\nlignes\"\n"
                        "\n"
                        "#, fuzzy, c-format\n"
                        "msgid \"Review me\"\n"
                        "msgstr \"Relisez-moi\"\n"
                        "\n"
                        "#, fuzzy\n"
                        "#| msgid \"Stop playing\"\n"
                        "msgid \"Stop\"\n"
                        "msgstr \"Arr\xC3\xAAter la lecture\"\n"
                        "msgid \"Untranslated\"\n"
                        "msgstr \"\"\n"
                        "\n"
                        "#~ msgid \"Old key\"\n"
                        "#~ msgstr \"Ancienne cl\xC3\xA9\"\n"
                        "#~ msgid \"Play\"\n"
                        "#~ msgstr \"Action\"\n");
    EXPECT_TRUE(catalogue.problems.empty());
    ASSERT_EQ(catalogue.entries.size(), 6u);
    EXPECT_TRUE(catalogue.entries[0].isHeader());
    EXPECT_FALSE(catalogue.entries[0].isUsable());

    const PoEntry* play = catalogue.find("Play");
    ASSERT_NE(play, nullptr);
    EXPECT_EQ(play->text, "Lecture"); // the obsolete "Play" does not count
    EXPECT_EQ(play->line, 7);
    ASSERT_NE(catalogue.find("Two \"quoted\"\nlines\tand \\ \xC3\xA9"), nullptr);
    EXPECT_EQ(catalogue.find("Two \"quoted\"\nlines\tand \\ \xC3\xA9")->text, "Deux\nlignes");

    // A fuzzy text asking for review is used; msgmerge's guess from another
    // key is not, nor an empty text.
    EXPECT_TRUE(catalogue.find("Review me")->isFuzzy());
    EXPECT_TRUE(catalogue.find("Review me")->isUsable());
    EXPECT_TRUE(catalogue.find("Stop")->isDoubtful());
    EXPECT_FALSE(catalogue.find("Stop")->isUsable());
    EXPECT_FALSE(catalogue.find("Untranslated")->isUsable());
    EXPECT_EQ(catalogue.find("Old key"), nullptr);
}

TEST(PoCatalogueTest, ReportsBrokenEntriesWithTheirLines)
{
    auto catalogue = po("msgid \"Bad \\q escape\"\n" // 5
                        "msgstr \"x\"\n"
                        "\n"
                        "msgid \"No text\"\n" // 8
                        "\n"
                        "msgid \"Twice\"\n"
                        "msgstr \"Deux fois\"\n"
                        "\n"
                        "msgid \"Twice\"\n" // 13
                        "msgstr \"Encore\"\n"
                        "\n"
                        "msgid \"Files\"\n"
                        "msgid_plural \"Files\"\n" // 17
                        "msgstr[0] \"Fichier\"\n" // 18
                        "\n"
                        "msgstr \"Orphan\"\n" // 20
                        "msgid Unquoted\n" // 21
                        "msgstr \"\"\n"
                        "\n"
                        "mystery \"word\"\n" // 24
                        "msgid \"Fine\"\n"
                        "msgstr \"Bien\"\n");
    EXPECT_EQ(problemLines(catalogue.problems), (std::vector<int32_t> { 5, 8, 13, 17, 18, 20, 21, 24 }));
    ASSERT_NE(catalogue.find("Fine"), nullptr);
    EXPECT_EQ(catalogue.find("Fine")->text, "Bien");
    EXPECT_EQ(catalogue.problems[0].file, "fr.po");

    auto missing = readPo("/nonexistent/xx.po");
    ASSERT_EQ(missing.problems.size(), 1u);
    EXPECT_EQ(missing.problems[0].file, "/nonexistent/xx.po");
}

TEST(TranslationCheckTest, TranslationsKeepWhatTheCodeReliesOn)
{
    EXPECT_EQ(placeholders("%1 of {count} at 100% and %d"), (std::vector<std::string> { "%1", "{count}", "%d" }));
    EXPECT_EQ(checkTranslation("Copy %s", "Copier %s"), "");
    EXPECT_EQ(checkTranslation("Page %d of %d", "Page %d"), "the translation drops the placeholder \"%d\"");
    EXPECT_EQ(checkTranslation("Copy %1 to %2", "Copier %2 vers %1"), "");
    EXPECT_EQ(checkTranslation("Copy %1", "Copier %1 vers %2"), "the translation adds the placeholder \"%2\"");
    EXPECT_EQ(checkTranslation("Copy %1", "Copier %1 et %1"), "the translation adds the placeholder \"%1\"");
    EXPECT_EQ(checkTranslation("&File", "Fichier"), "the translation drops the accelerator \"&\"");
    EXPECT_EQ(checkTranslation("Save...", "Enregistrer"), "the translation drops the closing \"...\"");
    EXPECT_NE(checkTranslation("Save Changes To ", "Enregistrer dans"), "");
    EXPECT_NE(checkTranslation(" shows", "montre"), "");
    EXPECT_NE(checkTranslation("Play", ""), "");

    EXPECT_EQ(checkFrenchTypography("Fichier\xC2\xA0: %1 \xC2\xAB\xC2\xA0"
                                    "Chat\xC2\xA0\xC2\xBB ?"),
              "a plain blank before \"?\" wants a no-break space");
    EXPECT_NE(checkFrenchTypography("\xC2\xAB Chat\xC2\xA0\xC2\xBB"), "");
    EXPECT_NE(checkFrenchTypography("\xC2\xAB\xC2\xA0"
                                    "Chat \xC2\xBB"),
              "");
    EXPECT_EQ(checkFrenchTypography(" : joint\xC2\xA0!"), ""); // an opening blank joins pieces

    EXPECT_TRUE(fitsWindowsSet("Caf\xC3\xA9 \xE2\x82\xAC \xE2\x80\xA6 \xC2\xA0!"));
    EXPECT_FALSE(fitsWindowsSet("Narrow\xE2\x80\xAF!")); // U+202F
    EXPECT_FALSE(fitsWindowsSet("\xCE\xB1")); // Greek alpha
    EXPECT_FALSE(isValidUtf8("\xC3\x28"));
    EXPECT_FALSE(isValidUtf8("\xC0\xAF")); // overlong "/"
    EXPECT_FALSE(isValidUtf8("\xE2\x82")); // cut short
    EXPECT_TRUE(isValidUtf8("\xF0\x9F\x98\x80"));
}

TEST(TranslationTableTest, CollectsSoundTranslationsAndWritesThemAsCpp)
{
    std::vector<PoCatalogue> languages;
    languages.push_back(po("msgid \"Play\"\nmsgstr \"Lecture\"\n\n"
                           "msgid \"Page %d\"\nmsgstr \"Page\"\n\n"
                           "msgid \"Quote \\\"\"\nmsgstr \"Guillemet \xC2\xAB\\\\\xC2\xBB\"\n",
                           "fr.po"));
    languages.push_back(po("msgid \"Play\"\nmsgstr \"Riproduci\"\n", "it.po"));
    languages.push_back(po("msgid \"Stop\"\nmsgstr \"Stopp\"\n", "de.po"));
    std::vector<PoProblem> problems;
    auto rows = collectRows(languages, problems);
    EXPECT_EQ(keysOf(rows), (std::vector<std::string> { "Play", "Quote \"", "Stop" }));
    ASSERT_EQ(problemLines(problems), (std::vector<int32_t> { 8 }));
    EXPECT_EQ(problems[0].file, "fr.po");
    EXPECT_EQ(*rows[0].texts[1], "Riproduci");
    EXPECT_FALSE(rows[0].texts[2].has_value());

    std::string table = writeTable(rows);
    EXPECT_NE(table.find("{ \"Play\", \"Lecture\", \"Riproduci\", nullptr },"), std::string::npos);
    EXPECT_NE(table.find("{ \"Quote \\\"\", \"Guillemet \\302\\253\\\\\\302\\273\", nullptr, nullptr },"),
              std::string::npos);
    EXPECT_NE(table.find("kTranslationRowCount = 3;"), std::string::npos);
    // An empty table still compiles: C++ has no empty arrays.
    EXPECT_NE(writeTable({}).find("kTranslationRowCount = 0;"), std::string::npos);
}

TEST(TranslationTableTest, CatalogueCheckFindsStaleAndMissingKeys)
{
    auto templ = po("msgid \"Play\"\nmsgstr \"\"\n\nmsgid \"Gone\"\nmsgstr \"\"\n", "taleloom.pot");
    auto fresh = po("msgid \"Play\"\nmsgstr \"\"\n\nmsgid \"New\"\nmsgstr \"\"\n", "fresh.pot");
    std::vector<PoCatalogue> languages;
    languages.push_back(po("msgid \"Play\"\nmsgstr \"Lecture\"\n\nmsgid \"Gone\"\nmsgstr \"Parti\"\n"));
    languages.push_back(po("msgid \"Play\"\nmsgstr \"Riproduci\"\n\nmsgid \"Gone\"\nmsgstr \"\"\n"
                           "\nmsgid \"Stray\"\nmsgstr \"Randagio\"\n",
                           "it.po"));
    languages.push_back(po("#, fuzzy\nmsgid \"Play\"\nmsgstr \"Abspielen\"\n\n"
                           "msgid \"Gone\"\nmsgstr \"Weg \"\n",
                           "de.po"));
    auto problems = checkCatalogues(templ, fresh, languages);
    std::vector<std::string> seen;
    for (const PoProblem& problem : problems)
        seen.push_back(problem.file + ": " + problem.message.substr(0, problem.message.find(" (")));
    EXPECT_EQ(seen, (std::vector<std::string> {
                        "fresh.pot: \"New\" is used by the code but missing from the template",
                        "taleloom.pot: \"Gone\" is in the template but no longer in the code",
                        "it.po: \"Stray\" is translated but not in the template",
                        "it.po: \"Gone\" has no translation",
                        "de.po: \"Gone\": leading or trailing blanks differ from the key's",
                    }));

    // A complete, current catalogue passes.
    EXPECT_TRUE(checkCatalogues(templ, templ, std::vector<PoCatalogue>(3, languages[0])).empty());
}

// Names that files store and read back, such as the palette file's
// "Color 1" to "Color 16", must never be translated: a palette saved in one
// language would not load in another. Obsolete entries count too, since a
// merge revives them.
TEST(CatalogueTest, NoKeyIsAFileFormatName)
{
    const char* source = std::getenv("TALELOOM_TEST_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    for (const char* file : { "taleloom.pot", "fr.po", "it.po", "de.po" }) {
        std::ifstream in(std::string(source) + "/data/locale/" + file);
        ASSERT_TRUE(in) << file;
        std::stringstream contents;
        contents << in.rdbuf();
        for (const char* name : { "Color ", "Media" })
            EXPECT_EQ(contents.str().find("msgid \"" + std::string(name) + "\""), std::string::npos)
                << file << ": " << name;
    }
}
