#include "kmultimedia/KSoundSupport.h"

#include "kernel/KBag.h"
#include "kernel/KClass.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KSoundNative.h"

#include <strings.h>

K_DEFINE_CLASS(KSoundSupport, KMediaSupport)

namespace {

KSoundSupport* gCurrentSupport = nullptr;

KSoundSupport::NativeFactory& nativeFactory()
{
    static KSoundSupport::NativeFactory factory;
    return factory;
}

} // namespace

KSoundSupport::KSoundSupport() { gCurrentSupport = this; }

KSoundSupport::~KSoundSupport()
{
    if (gCurrentSupport == this)
        gCurrentSupport = nullptr;
}

KSoundSupport* KSoundSupport::current() { return gCurrentSupport; }

int32_t KSoundSupport::availableEngines()
{
    if (gCurrentSupport)
        return gCurrentSupport->engineFlags;
    if (nativeFactory())
        return Player;
    return knsAvailableSoundEngines();
}

bool KSoundSupport::open()
{
    int32_t platform = nativeFactory() ? int32_t(Player) : knsAvailableSoundEngines();
    // Every kind the media manager asks for is played by the one player.
    engineFlags = getKinds() ? platform : 0;
    setOpen(true);
    return engineFlags != 0;
}

void KSoundSupport::close()
{
    engineFlags = 0;
    setOpen(false);
}

void KSoundSupport::getInputDevices(KBag& names) const
{
    for (const std::string& name : knsSoundInputDevices())
        names.add(*new KString(KTextCodec::fromUtf8(name)));
}

const std::vector<const char*>& KSoundSupport::getSoundExtensions()
{
    static const std::vector<const char*> extensions = { "WAV", "AIF", "AIFF", "MP3", "MIDI", "MID", "WMA", "M4A" };
    return extensions;
}

bool KSoundSupport::isSoundExtension(const char* extension)
{
    for (const char* known : getSoundExtensions()) {
        if (extension && strcasecmp(known, extension) == 0)
            return true;
    }
    // Sun audio is played as well, though not offered in the chooser.
    return extension && strcasecmp(extension, "AU") == 0;
}

KSoundNative* KSoundSupport::createNative()
{
    if (nativeFactory())
        return nativeFactory()();
    return knsCreateSound();
}

void KSoundSupport::setNativeFactory(NativeFactory factory) { nativeFactory() = std::move(factory); }
