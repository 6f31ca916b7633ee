#include "kernel/KLocalizerData.h"

#include "kernel/KDirectory.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KFileSystem.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace KLocalizerData {

namespace {

bool hasLocaleFolder(const std::filesystem::path& data)
{
    std::error_code ignored;
    return !data.empty() && std::filesystem::is_directory(data / "locale", ignored);
}

std::string fromEnvironment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

std::string programFolder()
{
    const KPath& path = KFileSystem::get().getApplicationDirectory().getPath();
    if (path.isEmpty())
        return {};
    return KTextCodec::toUtf8(path.getNativeText());
}

bool isValidUtf8(std::string_view text)
{
    size_t i = 0;
    while (i < text.size()) {
        auto c = static_cast<unsigned char>(text[i]);
        size_t extra = 0;
        if (c >= 0xF5 || (c >= 0x80 && c < 0xC2))
            return false;
        if (c >= 0xF0)
            extra = 3;
        else if (c >= 0xE0)
            extra = 2;
        else if (c >= 0xC2)
            extra = 1;
        if (text.size() - i <= extra)
            return false;
        for (size_t k = 1; k <= extra; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80)
                return false;
        }
        i += extra + 1;
    }
    return true;
}

// True when the Windows set can hold every character of `utf8`.
bool fitsWindowsSet(std::string_view utf8) { return KTextCodec::toUtf8(KTextCodec::fromUtf8(utf8)) == utf8; }

std::string_view stripCarriageReturn(std::string_view line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

bool isComment(std::string_view line)
{
    size_t first = line.find_first_not_of(" \t");
    return first == std::string_view::npos || line[first] == '#';
}

// Splits at the one tab that is not escaped; false when there is not
// exactly one.
bool splitFields(std::string_view line, std::string_view& key, std::string_view& text)
{
    size_t tab = line.find('\t');
    if (tab == std::string_view::npos || line.find('\t', tab + 1) != std::string_view::npos)
        return false;
    key = line.substr(0, tab);
    text = line.substr(tab + 1);
    return true;
}

// The problem of one line, or "" for a good entry.
std::string parseLine(std::string_view line, Entry& entry)
{
    if (!isValidUtf8(line))
        return "not valid UTF-8";
    std::string_view key, text;
    if (!splitFields(line, key, text))
        return "expected one tab between the English key and its translation";
    std::string error;
    if (!unescape(key, entry.key, error) || !unescape(text, entry.text, error))
        return error;
    if (entry.key.empty())
        return "empty key";
    if (entry.text.empty())
        return "empty translation";
    if (!fitsWindowsSet(entry.key) || !fitsWindowsSet(entry.text))
        return "a character outside the Windows character set";
    return checkTranslation(entry.key, entry.text);
}

void report(const Problem& problem)
{
    std::fprintf(stderr, "taleloom: warning: %s:%d: %s\n", problem.file.c_str(), int(problem.line),
                 problem.message.c_str());
}

} // namespace

bool unescape(std::string_view field, std::string& out, std::string& error)
{
    out.clear();
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\') {
            out += field[i];
            continue;
        }
        if (++i == field.size()) {
            error = "a backslash at the end of a field";
            return false;
        }
        switch (field[i]) {
        case 't': out += '\t'; break;
        case 'n': out += '\n'; break;
        case '\\': out += '\\'; break;
        case '#': out += '#'; break;
        default:
            error = std::string("unknown escape \"\\") + field[i] + "\"";
            return false;
        }
    }
    return true;
}

std::string escape(std::string_view text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\t')
            out += "\\t";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\\')
            out += "\\\\";
        else if (c == '#' && i == 0)
            out += "\\#";
        else
            out += c;
    }
    return out;
}

std::vector<std::string> placeholders(std::string_view text)
{
    std::vector<std::string> found;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            size_t end = i + 1;
            while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])))
                ++end;
            if (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])))
                ++end;
            if (end > i + 1) {
                found.emplace_back(text.substr(i, end - i));
                i = end - 1;
            }
        } else if (text[i] == '{') {
            size_t close = text.find('}', i);
            if (close != std::string_view::npos && close > i + 1) {
                found.emplace_back(text.substr(i, close - i + 1));
                i = close;
            }
        }
    }
    return found;
}

std::string checkTranslation(std::string_view key, std::string_view text)
{
    auto keyMarks = placeholders(key);
    auto textMarks = placeholders(text);
    std::multiset<std::string> have(textMarks.begin(), textMarks.end());
    for (const auto& mark : keyMarks) {
        auto it = have.find(mark);
        if (it == have.end())
            return "the translation drops the placeholder \"" + mark + "\"";
        have.erase(it);
    }
    auto count = [](std::string_view s, char c) { return std::count(s.begin(), s.end(), c); };
    if (count(key, '&') > 0 && count(text, '&') == 0)
        return "the translation drops the accelerator \"&\"";
    auto endsWith = [](std::string_view s, std::string_view tail) {
        return s.size() >= tail.size() && s.substr(s.size() - tail.size()) == tail;
    };
    if (endsWith(key, "...") && !endsWith(text, "..."))
        return "the translation drops the closing \"...\"";
    auto isBlank = [](char c) { return c == ' ' || c == '\n'; };
    if (isBlank(key.front()) != isBlank(text.front()) || isBlank(key.back()) != isBlank(text.back()))
        return "leading or trailing blanks differ from the key's";
    return {};
}

ParsedFile parse(std::string_view contents, const std::string& name)
{
    ParsedFile result;
    result.opened = true;
    std::set<std::string> seen;
    int32_t lineNumber = 0;
    size_t start = 0;
    while (start < contents.size()) {
        size_t end = contents.find('\n', start);
        if (end == std::string_view::npos)
            end = contents.size();
        std::string_view line = stripCarriageReturn(contents.substr(start, end - start));
        start = end + 1;
        ++lineNumber;
        if (isComment(line))
            continue;
        Entry entry;
        entry.line = lineNumber;
        std::string problem = parseLine(line, entry);
        if (problem.empty() && !seen.insert(entry.key).second)
            problem = "the key \"" + entry.key + "\" is given twice";
        if (problem.empty())
            result.entries.push_back(std::move(entry));
        else
            result.problems.push_back({ name, lineNumber, problem });
    }
    return result;
}

ParsedFile readFile(const std::string& path)
{
    KFile file(KPath(KTextCodec::fromUtf8(path), KPath::kHostPlatform));
    file.setMode(KFileModeReadBuffered);
    if (!file.doesExist())
        return {};
    file.open();
    if (file.getError() || !file.isOpen())
        return {};
    std::string contents;
    int32_t size = file.bytesLeft();
    contents.resize(size_t(std::max(size, 0)));
    bool complete = size <= 0 || file.readBytes(contents.data(), size);
    file.close();
    if (!complete)
        return {};
    return parse(contents, path);
}

int32_t loadLanguageFile(KLocalizer& localizer, int32_t column, const std::string& path)
{
    ParsedFile parsed = readFile(path);
    for (const Problem& problem : parsed.problems)
        report(problem);
    for (const Entry& entry : parsed.entries)
        localizer.addEntry(KTextCodec::fromUtf8(entry.key), KTextCodec::fromUtf8(entry.text), column);
    return int32_t(parsed.entries.size());
}

std::string findDataDirectory()
{
    namespace fs = std::filesystem;
    std::string configured = fromEnvironment("TALELOOM_DATA_DIR");
    if (!configured.empty())
        return hasLocaleFolder(configured) ? configured : std::string();
    std::vector<fs::path> candidates;
    std::string program = programFolder();
    if (!program.empty()) {
        fs::path folder(program);
        candidates.push_back(folder / "data");
        candidates.push_back(folder.parent_path() / "data");
        candidates.push_back(folder.parent_path().parent_path() / "data");
        candidates.push_back(folder.parent_path() / "share" / "taleloom" / "data");
    }
    std::string source = fromEnvironment("TALELOOM_TEST_SOURCE_DIR");
    if (!source.empty())
        candidates.push_back(fs::path(source) / "data");
    for (const auto& candidate : candidates) {
        if (hasLocaleFolder(candidate))
            return candidate.string();
    }
    return {};
}

int32_t fill(KLocalizer& localizer, const std::string& localeDirectory)
{
    int32_t stored = 0;
    for (const LanguageFile& language : kLanguageFiles) {
        int32_t column = localizer.getLanguageColumn(language.language);
        if (column == KLocalizer::kEnglishColumn) {
            localizer.addLanguage(language.language);
            column = localizer.getLanguageCount() - 1;
        }
        if (!localeDirectory.empty())
            stored += loadLanguageFile(localizer, column, localeDirectory + "/" + language.fileName);
    }
    localizer.balance();
    return stored;
}

} // namespace KLocalizerData

namespace {

KLocalizerPtr& baseLocalizerHolder()
{
    static KLocalizerPtr holder;
    return holder;
}

} // namespace

KLocalizer* kBaseLocalizer() { return baseLocalizerHolder().get(); }

void kCreateBaseLocalizer()
{
    KLocalizerPtr localizer(new KLocalizer());
    std::string data = KLocalizerData::findDataDirectory();
    KLocalizerData::fill(*localizer, data.empty() ? std::string() : data + "/locale");
    baseLocalizerHolder() = localizer;
}

void kDestroyBaseLocalizer() { baseLocalizerHolder().clear(); }

KString kBaseTranslate(const char* key)
{
    KLocalizer* localizer = kBaseLocalizer();
    return localizer ? localizer->translate(key) : KString(key);
}
