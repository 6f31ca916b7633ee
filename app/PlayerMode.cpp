#include "app/PlayerMode.h"
#include "kernel/KTextCodec.h"
#include <cstdlib>
#include <sstream>

PlayerMode& PlayerMode::get()
{
    static PlayerMode mode;
    return mode;
}

namespace {

std::string trimmed(const std::string& text)
{
    size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return std::string();
    size_t last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

bool readNumber(const std::string& text, double& out)
{
    if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789.-") != std::string::npos)
        return false;
    char* end = nullptr;
    double value = std::strtod(text.c_str(), &end);
    if (!end || *end != '\0')
        return false;
    out = value;
    return true;
}

} // namespace

void readPlayerSettings(const std::string& text, PlayerMode& mode)
{
    std::istringstream lines(text);
    std::string line;
    bool inPlayer = false;
    while (std::getline(lines, line)) {
        line = trimmed(line);
        if (line.empty() || line[0] == '#')
            continue;
        if (line.front() == '[') {
            inPlayer = line == "[Player]";
            continue;
        }
        size_t equals = line.find('=');
        if (!inPlayer || equals == std::string::npos)
            continue;
        std::string key = trimmed(line.substr(0, equals));
        std::string value = trimmed(line.substr(equals + 1));
        if (key == "Language")
            mode.language = KTextCodec::fromUtf8(value);
        else if (key == "LastUsedVoice")
            mode.voice = KTextCodec::fromUtf8(value);
        else if (key == "SpeechSpeed")
            mode.hasSpeechSpeed = readNumber(value, mode.speechSpeed);
        else if (key == "CustomSpeechSpeed")
            mode.customSpeechSpeed = value == "true" ? 1 : value == "false" ? 0 : mode.customSpeechSpeed;
    }
}
