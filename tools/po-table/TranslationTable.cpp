#include "tools/po-table/TranslationTable.h"

#include "tools/po-table/TranslationCheck.h"

#include <cstdio>
#include <map>

namespace {

bool isFrench(const std::string& catalogue)
{
    std::string_view name(catalogue);
    size_t slash = name.rfind('/');
    return name.substr(slash == std::string_view::npos ? 0 : slash + 1) == "fr.po";
}

// Why `entry` cannot go into the program, or "".
std::string unsoundReason(const PoEntry& entry, const std::string& catalogue)
{
    if (!entry.context.empty())
        return "a context (msgctxt) is not supported by the program";
    if (!fitsWindowsSet(entry.key) || !fitsWindowsSet(entry.text))
        return "a character outside the Windows character set";
    std::string reason = checkTranslation(entry.key, entry.text);
    if (reason.empty() && isFrench(catalogue))
        reason = checkFrenchTypography(entry.text);
    return reason;
}

std::string quote(const std::string& text)
{
    std::string out = "\"";
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte >= 0x7F) {
            // Three octal digits: never read together with a following digit.
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\%03o", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

void addMismatch(const PoCatalogue& have, const PoCatalogue& lack, const std::string& message,
                 std::vector<PoProblem>& problems)
{
    for (const PoEntry& entry : have.entries) {
        if (!entry.isHeader() && !lack.find(entry.key))
            problems.push_back({ have.name, entry.line, "\"" + entry.key + "\" " + message });
    }
}

} // namespace

std::vector<TranslationRow> collectRows(const std::vector<PoCatalogue>& languages, std::vector<PoProblem>& problems)
{
    std::map<std::string, TranslationRow> rows;
    for (size_t column = 0; column < languages.size(); ++column) {
        const PoCatalogue& language = languages[column];
        for (const PoEntry& entry : language.entries) {
            if (!entry.isUsable())
                continue;
            std::string reason = unsoundReason(entry, language.name);
            if (!reason.empty()) {
                problems.push_back({ language.name, entry.line, "\"" + entry.key + "\": " + reason });
                continue;
            }
            TranslationRow& row = rows[entry.key];
            row.key = entry.key;
            row.texts.resize(languages.size());
            row.texts[column] = entry.text;
        }
    }
    std::vector<TranslationRow> sorted;
    for (auto& [key, row] : rows)
        sorted.push_back(std::move(row));
    return sorted;
}

std::string writeTable(const std::vector<TranslationRow>& rows)
{
    std::string out = "// Made from data/locale/*.po at build time by taleloom-po-table: edit the PO files.\n"
                      "#include \"kernel/KTranslationRow.h\"\n\n"
                      "const KTranslationRow kTranslationRows[] = {\n";
    for (const TranslationRow& row : rows) {
        out += "    { " + quote(row.key);
        for (size_t column = 0; column < 3; ++column) {
            bool has = column < row.texts.size() && row.texts[column];
            out += ", " + (has ? quote(*row.texts[column]) : std::string("nullptr"));
        }
        out += " },\n";
    }
    if (rows.empty())
        out += "    { \"\", nullptr, nullptr, nullptr },\n";
    out += "};\n\nconst int32_t kTranslationRowCount = " + std::to_string(rows.size()) + ";\n";
    return out;
}

std::vector<PoProblem> checkCatalogues(const PoCatalogue& templ, const PoCatalogue& fresh,
                                       const std::vector<PoCatalogue>& languages)
{
    std::vector<PoProblem> problems;
    for (const PoCatalogue* catalogue : { &templ, &fresh })
        problems.insert(problems.end(), catalogue->problems.begin(), catalogue->problems.end());
    for (const PoCatalogue& language : languages)
        problems.insert(problems.end(), language.problems.begin(), language.problems.end());

    const std::string update = "(run make update-po)";
    addMismatch(fresh, templ, "is used by the code but missing from the template " + update, problems);
    addMismatch(templ, fresh, "is in the template but no longer in the code " + update, problems);
    for (const PoCatalogue& language : languages) {
        addMismatch(language, templ, "is translated but not in the template " + update, problems);
        for (const PoEntry& key : templ.entries) {
            const PoEntry* entry = language.find(key.key);
            if (key.isHeader())
                continue;
            if (!entry || !entry->isUsable())
                problems.push_back(
                    { language.name, entry ? entry->line : 0, "\"" + key.key + "\" has no translation" });
            else if (std::string reason = unsoundReason(*entry, language.name); !reason.empty())
                problems.push_back({ language.name, entry->line, "\"" + key.key + "\": " + reason });
        }
    }
    return problems;
}
