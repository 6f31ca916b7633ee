#include "app/ProjectNameRules.h"

#include "app/UiText.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <string>

namespace ProjectNameRules {

namespace {

// Bytes the Windows set leaves undefined.
bool undefinedInWindowsSet(unsigned char c) { return c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D; }

bool hasIllegalCharacter(const std::string& name)
{
    for (char c : name) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || undefinedInWindowsSet(byte) || std::strchr("/\\:*?\"<>|", c))
            return true;
    }
    return false;
}

std::string folded(const std::string& text)
{
    std::string result = text;
    for (char& c : result)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

} // namespace

KString trimmed(const KString& name)
{
    std::string text = name.c_str();
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return KString();
    size_t last = text.find_last_not_of(" \t");
    return KString(text.substr(first, last - first + 1).c_str());
}

bool existsIn(const KString& name, const KDirectory& folder)
{
    std::error_code failure;
    std::filesystem::path where(KTextCodec::toUtf8(folder.getNativeText()));
    std::string wanted = folded(KTextCodec::toUtf8(name));
    for (const auto& entry : std::filesystem::directory_iterator(where, failure)) {
        std::string entryName = entry.path().filename().string();
        std::string stem = entry.path().stem().string();
        if (folded(entryName) == wanted || (entry.is_regular_file() && folded(stem) == wanted))
            return true;
    }
    return false;
}

Problem check(const KString& name, const KDirectory& folder)
{
    KString clean = trimmed(name);
    std::string text = clean.c_str();
    if (int32_t(text.size()) > kMaximumLength)
        return Problem::TooLong;
    if (text.empty() || text.front() == '.' || hasIllegalCharacter(text))
        return Problem::IllegalCharacters;
    if (existsIn(clean, folder))
        return Problem::Exists;
    return Problem::None;
}

KString freeName(const KString& base, const KDirectory& folder)
{
    if (!existsIn(base, folder))
        return base;
    for (int32_t number = 2;; ++number) {
        KString candidate = base + " " + std::to_string(number).c_str();
        if (!existsIn(candidate, folder))
            return candidate;
    }
}

KString message(Problem problem)
{
    switch (problem) {
    case Problem::TooLong:
        return uiText("The project name is too long, only 26 characters allowed.");
    case Problem::IllegalCharacters:
        return uiText("The project name contains illegal characters.");
    case Problem::Exists:
        return uiText("Project already exists");
    default:
        return KString();
    }
}

} // namespace ProjectNameRules
