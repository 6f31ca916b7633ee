#include "kmultimedia/testing/KFakeSound.h"

#include "kmultimedia/KSoundSupport.h"

#include <algorithm>

bool KFakeSound::open(const char* path, const char* renderPath)
{
    script->calls.push_back("open");
    std::string name = path ? path : "";
    if (name.size() >= 4 && name.compare(name.size() - 4, 4, ".bad") == 0) {
        reason = "the file cannot be decoded";
        return false;
    }
    script->openedPath = name;
    script->renderPath = renderPath ? renderPath : "";
    script->position = 0.0;
    return true;
}

void KFakeSound::start()
{
    script->calls.push_back("start");
    script->playing = true;
}

void KFakeSound::pause()
{
    script->calls.push_back("pause");
    script->playing = false;
}

void KFakeSound::seek(double seconds)
{
    script->calls.push_back("seek " + std::to_string(int(seconds * 1000.0)));
    script->position = std::clamp(seconds, 0.0, script->duration);
}

void KFakeSound::update()
{
    if (script->failWhilePlaying && script->playing && !failed) {
        failed = true;
        reason = "the device went away";
    }
}

void KFakeSound::install(std::shared_ptr<Script> script)
{
    if (!script) {
        KSoundSupport::setNativeFactory(nullptr);
        return;
    }
    KSoundSupport::setNativeFactory([script] { return new KFakeSound(script); });
}

void KFakeSound::advance(Script& script, double seconds)
{
    if (script.playing)
        script.position = std::min(script.duration, script.position + seconds);
}
