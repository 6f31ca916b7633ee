#include "tools/po-table/PoCatalogue.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace {

std::string_view trimmed(std::string_view line)
{
    size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    size_t last = line.find_last_not_of(" \t\r");
    return line.substr(first, last - first + 1);
}

bool isOctal(char c) { return c >= '0' && c <= '7'; }

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Resolves the C escapes of one quoted string ("..." with its quotes);
// the problem, or "" when it is good.
std::string unquote(std::string_view quoted, std::string& out)
{
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"')
        return "expected a string in double quotes";
    std::string_view body = quoted.substr(1, quoted.size() - 2);
    for (size_t i = 0; i < body.size(); ++i) {
        char c = body[i];
        if (c == '"')
            return "an unescaped double quote inside a string";
        if (c != '\\') {
            out += c;
            continue;
        }
        if (++i == body.size())
            return "a backslash at the end of a string";
        c = body[i];
        switch (c) {
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        case 'a':
            out += '\a';
            break;
        case 'b':
            out += '\b';
            break;
        case 'f':
            out += '\f';
            break;
        case 'v':
            out += '\v';
            break;
        case '\\':
        case '"':
        case '\'':
        case '?':
            out += c;
            break;
        case 'x': {
            int value = 0, digits = 0;
            while (i + 1 < body.size() && hexValue(body[i + 1]) >= 0 && digits < 2) {
                value = value * 16 + hexValue(body[++i]);
                ++digits;
            }
            if (digits == 0)
                return "\\x without hexadecimal digits";
            out += char(value);
            break;
        }
        default:
            if (!isOctal(c))
                return std::string("unknown escape \"\\") + c + "\"";
            int value = c - '0';
            for (int digits = 1; digits < 3 && i + 1 < body.size() && isOctal(body[i + 1]); ++digits)
                value = value * 8 + (body[++i] - '0');
            out += char(value);
        }
    }
    return {};
}

// Which field of the entry the string lines being read belong to.
enum class Field { None, Context, Key, Text };

class Parser {
public:
    explicit Parser(PoCatalogue& catalogue)
        : catalogue(catalogue)
    {
    }

    void line(std::string_view raw, int32_t number)
    {
        lineNumber = number;
        std::string_view text = trimmed(raw);
        if (text.empty()) {
            finish();
            return;
        }
        if (text.front() == '#') {
            comment(text);
            return;
        }
        if (text.front() == '"') {
            continuation(text);
            return;
        }
        keyword(text);
    }

    void finish()
    {
        if (!broken && (field != Field::None || !entry.flags.empty() || entry.hasPreviousKey))
            store();
        entry = PoEntry();
        field = Field::None;
        seenKey = seenText = broken = false;
    }

private:
    // Reports at `line` (the current line when 0); the entry is dropped.
    void problem(const std::string& message, int32_t line = 0)
    {
        catalogue.problems.push_back({ catalogue.name, line ? line : lineNumber, message });
        broken = true;
    }

    void comment(std::string_view text)
    {
        // Obsolete entries are kept for msgmerge to revive; the program has
        // no use for them.
        if (text.rfind("#~", 0) == 0)
            return;
        if (seenText)
            finish();
        if (text.rfind("#,", 0) == 0) {
            std::istringstream flags { std::string(text.substr(2)) };
            std::string flag;
            while (std::getline(flags, flag, ','))
                if (!trimmed(flag).empty())
                    entry.flags.emplace_back(trimmed(flag));
        } else if (text.rfind("#|", 0) == 0) {
            entry.hasPreviousKey = true;
        }
    }

    void keyword(std::string_view text)
    {
        size_t space = text.find_first_of(" \t");
        std::string_view word = text.substr(0, space);
        std::string_view rest = space == std::string_view::npos ? std::string_view() : trimmed(text.substr(space));
        if (word == "msgid_plural" || word.rfind("msgstr[", 0) == 0) {
            problem("plural forms are not supported");
            field = Field::None;
            return;
        }
        Field next = word == "msgctxt"  ? Field::Context
                     : word == "msgid"  ? Field::Key
                     : word == "msgstr" ? Field::Text
                                        : Field::None;
        if (next == Field::None) {
            // The line alone is skipped.
            catalogue.problems.push_back(
                { catalogue.name, lineNumber, "unknown keyword \"" + std::string(word) + "\"" });
            return;
        }
        if (seenText || (next != Field::Text && seenKey))
            finish();
        if (next == Field::Text && !seenKey)
            problem("msgstr without msgid");
        if (next == Field::Key) {
            seenKey = true;
            entry.line = lineNumber;
        }
        if (next == Field::Text)
            seenText = true;
        field = next;
        continuation(rest);
    }

    void continuation(std::string_view quoted)
    {
        if (field == Field::None) {
            problem("a string outside an entry");
            return;
        }
        std::string& target = field == Field::Context ? entry.context : field == Field::Key ? entry.key : entry.text;
        std::string error = unquote(quoted, target);
        if (!error.empty())
            problem(error);
    }

    void store()
    {
        if (!seenKey || !seenText) {
            problem(seenKey ? "msgid without msgstr" : "flags or comments without an entry", entry.line);
            return;
        }
        std::string id = entry.context + '\x04' + entry.key;
        if (!ids.insert(id).second) {
            problem("the key \"" + entry.key + "\" is given twice", entry.line);
            return;
        }
        catalogue.entries.push_back(std::move(entry));
    }

    PoCatalogue& catalogue;
    PoEntry entry;
    Field field = Field::None;
    bool seenKey = false;
    bool seenText = false;
    bool broken = false;
    int32_t lineNumber = 0;
    std::set<std::string> ids;
};

} // namespace

bool PoEntry::isFuzzy() const { return std::find(flags.begin(), flags.end(), "fuzzy") != flags.end(); }

const PoEntry* PoCatalogue::find(std::string_view key) const
{
    auto found = index.find(key);
    return found == index.end() ? nullptr : &entries[found->second];
}

PoCatalogue parsePo(std::string_view contents, const std::string& name)
{
    PoCatalogue catalogue;
    catalogue.name = name;
    Parser parser(catalogue);
    int32_t number = 0;
    size_t start = 0;
    while (start < contents.size()) {
        size_t end = contents.find('\n', start);
        if (end == std::string_view::npos)
            end = contents.size();
        parser.line(contents.substr(start, end - start), ++number);
        start = end + 1;
    }
    parser.finish();
    for (size_t i = 0; i < catalogue.entries.size(); ++i) {
        if (catalogue.entries[i].context.empty() && !catalogue.entries[i].isHeader())
            catalogue.index.emplace(catalogue.entries[i].key, i);
    }
    return catalogue;
}

PoCatalogue readPo(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        PoCatalogue catalogue;
        catalogue.name = path;
        catalogue.problems.push_back({ path, 0, "cannot be read" });
        return catalogue;
    }
    std::ostringstream contents;
    contents << in.rdbuf();
    return parsePo(contents.str(), path);
}
