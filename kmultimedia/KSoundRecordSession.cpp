#include "kmultimedia/KSoundRecordSession.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

KSoundRecordSession::KSoundRecordSession(std::string where, Hooks given)
    : folder(std::move(where))
    , hooks(std::move(given))
    , takePath(folder + "/.Recording.WAV")
{
}

bool KSoundRecordSession::record()
{
    if (state == Recording)
        return true;
    if (state == Playing)
        stop();
    if (takeExists) {
        hooks.remove(takePath);
        takeExists = false;
    }
    if (!hooks.startRecording(takePath)) {
        state = Ready;
        return false;
    }
    state = Recording;
    return true;
}

void KSoundRecordSession::stop()
{
    if (state == Recording) {
        hooks.stopRecording();
        takeExists = true;
        state = TakeReady;
    } else if (state == Playing) {
        hooks.stopPlaying();
        state = TakeReady;
    }
}

bool KSoundRecordSession::play()
{
    if (state != TakeReady || !hooks.startPlaying(takePath))
        return false;
    state = Playing;
    return true;
}

void KSoundRecordSession::playEnded()
{
    if (state == Playing)
        state = TakeReady;
}

KSoundRecordSession::Acceptance KSoundRecordSession::accept(const std::string& name, bool overwriteConfirmed)
{
    stop();
    if (!takeExists)
        return NoTake;
    std::string base = name.empty() ? std::string(kDefaultName) : name;
    if (!isValidName(base))
        return BadName;
    std::string target = folder + "/" + fittedName(base);
    if (hooks.exists(target) && !overwriteConfirmed)
        return AskOverwrite;
    if (!hooks.rename(takePath, target))
        return SaveFailed;
    takeExists = false;
    savedPath = target;
    state = Ready;
    return Saved;
}

void KSoundRecordSession::cancel()
{
    stop();
    if (takeExists)
        hooks.remove(takePath);
    takeExists = false;
    state = Ready;
}

std::string KSoundRecordSession::fittedName(const std::string& name)
{
    size_t first = name.find_first_not_of(" \t");
    std::string base
        = first == std::string::npos ? std::string() : name.substr(first, name.find_last_not_of(" \t") + 1 - first);
    if (base.size() >= 4 && strcasecmp(base.c_str() + base.size() - 4, ".WAV") == 0)
        base.resize(base.size() - 4);
    // Characters, not bytes: a cut never splits one.
    size_t characters = 0;
    for (size_t i = 0; i < base.size(); ++i) {
        if ((static_cast<unsigned char>(base[i]) & 0xC0) == 0x80)
            continue;
        if (++characters > kMaximumNameLength - 4) {
            base.resize(i);
            break;
        }
    }
    return base + ".WAV";
}

bool KSoundRecordSession::isValidName(const std::string& name)
{
    if (name.empty() || name[0] == '.' || name.find("..") != std::string::npos)
        return false;
    // The characters no file system of a memory stick can hold, as for
    // every name in a project.
    for (char c : name) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || std::strchr("/\\:*?\"<>|", c))
            return false;
    }
    return name.find_first_not_of(" \t") != std::string::npos;
}

std::string KSoundRecordSession::formatTime(double seconds)
{
    auto whole = seconds > 0 ? long(seconds) : 0L;
    char text[16];
    std::snprintf(text, sizeof text, "%02ld:%02ld", whole / 60 % 100, whole % 60);
    return text;
}

std::string KSoundRecordSession::recordingsFolder(const std::string& projectMediaFolder)
{
    if (!projectMediaFolder.empty())
        return projectMediaFolder;
    const char* data = std::getenv("XDG_DATA_HOME");
    std::string base;
    if (data && *data)
        base = data;
    else if (const char* home = std::getenv("HOME"))
        base = std::string(home) + "/.local/share";
    return base + "/TaleLoom/Recordings";
}
