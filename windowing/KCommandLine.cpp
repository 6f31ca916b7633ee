#include "windowing/KCommandLine.h"

#include <cctype>
#include <cstring>
#include <string>

namespace KCommandLine {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

bool isSwitch(char c) { return c == '-' || c == '/'; }

bool isOptionLetter(char c)
{
    if (c == '\0')
        return false;
    return std::strchr(kOptionLetters, std::toupper(static_cast<unsigned char>(c))) != nullptr;
}

bool isOption(const std::string& token) { return token.size() == 2 && isSwitch(token[0]) && isOptionLetter(token[1]); }

KString toKString(const std::string& text)
{
    KString result;
    result.setText(text.data(), static_cast<int32_t>(text.size()));
    return result;
}

} // namespace

KString join(int32_t count, const char* const* arguments)
{
    std::string line;
    for (int32_t i = 0; i < count; ++i) {
        const char* argument = arguments[i] ? arguments[i] : "";
        if (!line.empty())
            line += ' ';
        bool quote = *argument == '\0' || std::strpbrk(argument, " \t") != nullptr;
        if (quote)
            line += '"';
        line += argument;
        if (quote)
            line += '"';
    }
    return toKString(line);
}

void parse(const KString& line, std::vector<KString>& files, std::vector<KString>& options)
{
    std::string text(line.c_str(), static_cast<size_t>(line.getLength()));
    size_t at = 0;
    while (true) {
        while (at < text.size() && isBlank(text[at]))
            ++at;
        if (at >= text.size())
            return;
        if (text[at] == '"') {
            size_t close = text.find('"', at + 1);
            size_t end = close == std::string::npos ? text.size() : close;
            std::string token = text.substr(at + 1, end - at - 1);
            if (!token.empty())
                files.push_back(toKString(token));
            at = close == std::string::npos ? text.size() : close + 1;
            continue;
        }
        size_t end = at;
        while (end < text.size() && !isBlank(text[end]))
            ++end;
        std::string token = text.substr(at, end - at);
        if (isOption(token))
            options.push_back(toKString(token.substr(1)));
        else
            files.push_back(toKString(token));
        at = end;
    }
}

} // namespace KCommandLine
