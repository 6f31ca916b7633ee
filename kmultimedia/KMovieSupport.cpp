#include "kmultimedia/KMovieSupport.h"

#include "kernel/KClass.h"
#include "kernel/KFileTypeHandler.h"
#include "kmultimedia/KMovieNative.h"

#include <strings.h>

K_DEFINE_CLASS(KMovieSupport, KMediaSupport)

namespace {

KMovieSupport* gCurrentSupport = nullptr;

constexpr const char* kMovieExtensions[] = { "MOV", "AVI", "MPG", "MPEG", "WMV", "MP4" };

struct MediaType {
    const char* description;
    const char* type;
    const char* extension;
};

constexpr MediaType kMediaTypes[] = {
    { "AIFF Sound File", "AIFF", "AIF" },      { "AIFF Sound File", "AIFF", "AIFF" },
    { "WAVE Sound File", "WAVE", "WAV" },      { "ULAW Sound File", "ULAW", "AU" },
    { "AIFC Sound File", "AIFC", "AIFC" },     { "System 7 Sound File", "sfil", "SND" },
    { "MP3 Audio File", "MPG3", "MP3" },       { "MIDI File", "MIDI", "MID" },
    { "MIDI File", "MIDI", "MIDI" },           { "Windows Media Audio File", "WMA ", "WMA" },
    { "MPEG-4 Audio File", "M4A ", "M4A" },    { "MPEG Movie File", "MPEG", "MPG" },
    { "QuickTime Movie File", "MooV", "MOV" }, { "MPEG Movie File", "MPEG", "MPEG" },
    { "AVI Movie File", "VfW ", "AVI" },       { "Windows Media Video File", "WMV ", "WMV" },
    { "MPEG-4 Video File", "MP4 ", "MP4" },
};

constexpr const char* kMediaCreator = "TVOD";

} // namespace

void kRegisterMediaFileTypes()
{
    for (const MediaType& entry : kMediaTypes) {
        if (KFileTypeHandler::hasAssociation(KString(entry.extension)))
            continue;
        KFileTypeHandler::makeAssociation(KString(entry.extension), KString(entry.description), KString(entry.type),
                                          KString(kMediaCreator));
    }
}

KMovieSupport::KMovieSupport() { gCurrentSupport = this; }

KMovieSupport::~KMovieSupport()
{
    if (gCurrentSupport == this)
        gCurrentSupport = nullptr;
}

KMovieSupport* KMovieSupport::current() { return gCurrentSupport; }

int32_t KMovieSupport::availableEngines()
{
    if (gCurrentSupport)
        return gCurrentSupport->engineFlags;
    return knsAvailableMovieEngines();
}

bool KMovieSupport::open()
{
    engineFlags = knsAvailableMovieEngines() & getKinds();
    setOpen(true);
    return engineFlags != 0;
}

void KMovieSupport::close()
{
    engineFlags = 0;
    setOpen(false);
}

std::vector<KFileType*> KMovieSupport::getMovieFileTypes() const
{
    std::vector<KFileType*> types;
    for (const char* extension : kMovieExtensions) {
        KFileType* type = nullptr;
        if (KFileTypeHandler::hasAssociation(KString(extension), &type) && type)
            types.push_back(type);
    }
    return types;
}

bool KMovieSupport::isMovieExtension(const char* extension)
{
    for (const char* known : kMovieExtensions) {
        if (extension && strcasecmp(known, extension) == 0)
            return true;
    }
    return false;
}
