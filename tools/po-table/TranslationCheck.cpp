#include "tools/po-table/TranslationCheck.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <set>

namespace {

// The characters that the Windows set places at 0x80 to 0x9F.
constexpr char32_t kWindowsExtras[] = {
    0x20AC, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x017D, 0x2018,
    0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x017E, 0x0178,
};

// Decodes the character at `i` and steps past it; false at a bad sequence.
bool nextCharacter(std::string_view text, size_t& i, char32_t& character)
{
    auto c = static_cast<unsigned char>(text[i]);
    size_t extra = c < 0x80 ? 0 : c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : 1;
    if (c >= 0xF5 || (c >= 0x80 && c < 0xC2) || text.size() - i <= extra)
        return false;
    character = extra == 0 ? c : extra == 1 ? c & 0x1F : extra == 2 ? c & 0x0F : c & 0x07;
    for (size_t k = 1; k <= extra; ++k) {
        auto follow = static_cast<unsigned char>(text[i + k]);
        if ((follow & 0xC0) != 0x80)
            return false;
        character = (character << 6) | (follow & 0x3F);
    }
    // Overlong forms and surrogates.
    static constexpr char32_t kSmallest[] = { 0, 0x80, 0x800, 0x10000 };
    if (character < kSmallest[extra] || (character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF)
        return false;
    i += extra + 1;
    return true;
}

} // namespace

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
    if (!have.empty())
        return "the translation adds the placeholder \"" + *have.begin() + "\"";
    auto count = [](std::string_view s, char c) { return std::count(s.begin(), s.end(), c); };
    if (count(key, '&') > 0 && count(text, '&') == 0)
        return "the translation drops the accelerator \"&\"";
    auto endsWith = [](std::string_view s, std::string_view tail) {
        return s.size() >= tail.size() && s.substr(s.size() - tail.size()) == tail;
    };
    if (endsWith(key, "...") && !endsWith(text, "..."))
        return "the translation drops the closing \"...\"";
    auto isBlank = [](char c) { return c == ' ' || c == '\n'; };
    if (key.empty() || text.empty())
        return key.size() == text.size() ? std::string() : "the translation is empty";
    if (isBlank(key.front()) != isBlank(text.front()) || isBlank(key.back()) != isBlank(text.back()))
        return "leading or trailing blanks differ from the key's";
    return {};
}

std::string checkFrenchTypography(std::string_view text)
{
    static constexpr std::string_view kGuillemetOpen = "\xC2\xAB", kGuillemetClose = "\xC2\xBB";
    for (size_t i = 1; i < text.size(); ++i) {
        if (text[i] != ' ')
            continue;
        char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (next == ':' || next == ';' || next == '?' || next == '!')
            return std::string("a plain blank before \"") + next + "\" wants a no-break space";
        if (text.substr(i + 1, 2) == kGuillemetClose || (i >= 2 && text.substr(i - 2, 2) == kGuillemetOpen))
            return "a plain blank inside guillemets wants a no-break space";
    }
    return {};
}

bool isValidUtf8(std::string_view text)
{
    char32_t character = 0;
    for (size_t i = 0; i < text.size();) {
        if (!nextCharacter(text, i, character))
            return false;
    }
    return true;
}

bool fitsWindowsSet(std::string_view text)
{
    char32_t character = 0;
    for (size_t i = 0; i < text.size();) {
        if (!nextCharacter(text, i, character))
            return false;
        bool latin = character < 0x80 || (character >= 0xA0 && character <= 0xFF);
        if (!latin
            && std::find(std::begin(kWindowsExtras), std::end(kWindowsExtras), character) == std::end(kWindowsExtras))
            return false;
    }
    return true;
}
