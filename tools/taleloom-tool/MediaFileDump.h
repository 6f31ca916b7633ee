#pragma once

#include <string>

// The media files that are not documents: speech exceptions dictionaries
// (magic "KSPX") and sound highlights (extension SHI, or a sound highlight's
// class stream after the 4-byte duration).
enum class MediaFileKind { None, SpeechExceptions, SoundHilite };

// What the file at `path` (UTF-8) is, from its first bytes and its name;
// None also when it cannot be read.
MediaFileKind detectMediaFile(const std::string& path);

// The JSON of the file, ending in a line break: the version and the entries
// in file order, or the duration, the sound, the text and the markers. When
// the file is damaged `json` holds what came before the damage and the
// result is false with a one-line `reason`, as when it cannot be read.
bool dumpSpeechExceptionsJson(const std::string& path, std::string& json, std::string& reason);
bool dumpSoundHiliteJson(const std::string& path, std::string& json, std::string& reason);
