#include "tools/taleloom-tool/MediaFileDump.h"

#include "kernel/KClass.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KJsonWriter.h"
#include "kernel/KPath.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSoundHiliteFile.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechException.h"
#include "kmultimedia/KSpeechExceptionHandler.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace {

KFileReference referenceOf(const std::string& path)
{
    return KFileReference(KPath(KTextCodec::fromUtf8(path), KPath::LinuxPlatform));
}

std::string errorText(int32_t code)
{
    return std::string(KErrorHandler::textOf(code)) + " (code " + std::to_string(code) + ")";
}

bool hasShiExtension(const std::string& path)
{
    if (path.size() < 4 || path[path.size() - 4] != '.')
        return false;
    std::string extension = path.substr(path.size() - 3);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::toupper(c)); });
    return extension == KSoundHiliteFile::kExtension;
}

// Opens the whole file in memory; false with the reason when it cannot.
bool openWhole(const std::string& path, KFile& file, std::string& reason)
{
    file.setMode(KFileModeReadBuffered);
    file.open();
    if (file.isOpen() && !file.getError())
        return true;
    int32_t error = file.getError() ? file.getError() : KError::CouldNotOpenFile;
    file.close();
    reason = path + ": cannot open: " + errorText(error);
    return false;
}

} // namespace

MediaFileKind detectMediaFile(const std::string& path)
{
    KFile file(referenceOf(path));
    file.setMode(KFileModeReadBuffered);
    file.open();
    if (!file.isOpen())
        return MediaFileKind::None;
    int32_t first = file.readLong();
    int32_t second = file.readLong();
    bool complete = file.getError() == 0;
    file.close();
    if (complete && first == KSpeechExceptionHandler::kMagic)
        return MediaFileKind::SpeechExceptions;
    if (hasShiExtension(path) || (complete && second == KClass::computeClassID("KSoundHiliteMedia")))
        return MediaFileKind::SoundHilite;
    return MediaFileKind::None;
}

bool dumpSpeechExceptionsJson(const std::string& path, std::string& json, std::string& reason)
{
    json.clear();
    KFile file(referenceOf(path));
    if (!openWhole(path, file, reason))
        return false;
    int32_t version = 0;
    std::vector<KSpeechExceptionPtr> records;
    KSpeechExceptionHandler::ReadResult result = KSpeechExceptionHandler::readStream(file, version, records);
    int32_t error = file.getError();
    file.close();
    if (result == KSpeechExceptionHandler::ReadResult::NotExceptions) {
        reason = path + ": not a speech exceptions file";
        return false;
    }
    KJsonWriter writer;
    writer.beginObject();
    writer.member("version", version);
    writer.key("exceptions");
    writer.beginArray();
    for (const KSpeechExceptionPtr& record : records) {
        writer.beginObject();
        writer.member("written", record->getWritten());
        writer.member("spoken", record->getSpoken());
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
    json = writer.getText() + "\n";
    if (result == KSpeechExceptionHandler::ReadResult::Damaged) {
        reason = path + ": damaged speech exceptions file"
                 + (error ? ": " + errorText(error) : std::string(": a record is not an exception"));
        return false;
    }
    return true;
}

bool dumpSoundHiliteJson(const std::string& path, std::string& json, std::string& reason)
{
    json.clear();
    KFile file(referenceOf(path));
    if (!openWhole(path, file, reason))
        return false;
    int32_t duration = 0;
    KSoundHiliteMediaPtr media(new KSoundHiliteMedia());
    bool sound = KSoundHiliteFile::read(file, duration, *media);
    int32_t error = file.getError();
    file.close();
    if (!sound && error == KError::CouldNotReadFile && media->getText().isEmpty() && media->getMarkerCount() == 0) {
        reason = path + ": not a sound highlight file";
        return false;
    }
    KString soundName;
    media->getSoundFile().getPath().getObjectName(soundName);
    KJsonWriter writer;
    writer.beginObject();
    writer.member("duration", duration);
    writer.member("soundFile", soundName);
    writer.member("soundPath", media->getSoundFile().getNativeText());
    writer.member("text", media->getText());
    writer.key("markers");
    writer.beginArray();
    for (int32_t i = 0; i < media->getMarkerCount(); ++i) {
        KSoundHiliteMarker* marker = media->getMarkerAt(i);
        writer.beginObject();
        writer.member("time", marker->getElapsedTime());
        writer.member("start", marker->getWordStart());
        writer.member("length", marker->getWordLength());
        writer.member("text", marker->getText());
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
    json = writer.getText() + "\n";
    if (!sound) {
        reason = path + ": damaged sound highlight file: " + errorText(error);
        return false;
    }
    return true;
}
