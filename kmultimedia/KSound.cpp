#include "kmultimedia/KSound.h"

#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KMemory.h"
#include "kernel/KPath.h"
#include "kernel/native/KNativeFiles.h"
#include "kmultimedia/KSoundNative.h"
#include "kmultimedia/KSoundSupport.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

K_DEFINE_CLASS(KSound, KAbstractMedia)

KSound::KSound() = default;

KSound::~KSound()
{
    KAbstractMedia::stop();
    disposeNative();
    KAbstractMedia::unload();
}

KSound& KSound::operator=(const KSound& other)
{
    if (this == &other)
        return *this;
    if (isLoaded()) {
        KErrorHandler::raiseError(KError::ObjectInUse);
        return *this;
    }
    KAbstractMedia::operator=(other);
    resourceId = other.resourceId;
    file.setPath(other.file.getPath());
    renderPath = other.renderPath;
    return *this;
}

bool KSound::createFromFile(const KDiskObjectReference& reference)
{
    clear();
    resourceId = -1;
    file.setPath(reference.getPath());
    return true;
}

bool KSound::createFromResource(int16_t resourceID)
{
    clear();
    resourceId = resourceID;
    file.setPath(KPath());
    setStreamingMode(KMediaInMemory);
    return true;
}

int32_t KSound::volumeToHundredthsOfDecibel(double volume)
{
    return int32_t(-(1.0 - std::clamp(volume, 0.0, 1.0)) * 4000.0);
}

void KSound::reportFailure(const std::string& why) const
{
    std::string name = resourceId >= 0 ? "resource " + std::to_string(resourceId)
                                       : std::string(file.getPath().getNativeText().c_str());
    std::fprintf(stderr, "TaleLoom: sound %s: %s\n", name.c_str(), why.c_str());
}

// A sound of the program's own goes through a temporary file, so that the
// one player serves both kinds.
bool KSound::extractResource(std::string& path)
{
    void* data = nullptr;
    int32_t size = 0;
    if (!knsReadProgramResource(int16_t(resourceId), &data, &size))
        return false;
    std::error_code ignored;
    std::filesystem::path folder = std::filesystem::temp_directory_path(ignored);
    path = (folder
            / ("taleloom-sound-" + std::to_string(getpid()) + "-" + std::to_string(resourceId) + "-"
               + std::to_string(reinterpret_cast<uintptr_t>(this))))
               .string();
    std::ofstream out(path, std::ios::binary);
    out.write(static_cast<const char*>(data), size);
    KMemory::dispose(data);
    if (!out)
        return false;
    resourceCopy = path;
    return true;
}

bool KSound::openNative(const std::string& path)
{
    KSoundNative* player = KSoundSupport::createNative();
    if (!player)
        return false;
    player->setVolume(getVolume());
    player->setBalance(getBalance());
    if (!player->open(path.c_str(), renderPath.empty() ? nullptr : renderPath.c_str())) {
        reportFailure(player->failure());
        delete player;
        return false;
    }
    setNativeData(player);
    return true;
}

bool KSound::load()
{
    if (isLoaded())
        return true;
    if (native()) {
        KErrorHandler::raiseError(KError::ObjectInUse);
        return false;
    }
    if (!KSoundSupport::availableEngines())
        return false;
    std::string path;
    if (getStreamingMode() == KMediaStreamFromFile) {
        if (resourceId >= 0) {
            KErrorHandler::raiseError(KError::UnsupportedStreamingMode);
            return false;
        }
        path = file.getPath().getNativeText().c_str();
    } else if (resourceId >= 0) {
        if (!extractResource(path)) {
            reportFailure("no such sound in the program");
            return false;
        }
    } else {
        path = file.getPath().getNativeText().c_str();
    }
    if (path.empty() || !openNative(path)) {
        disposeNative();
        return false;
    }
    failureReported = false;
    KAbstractMedia::load();
    setVolume(getVolume());
    setBalance(getBalance());
    return true;
}

void KSound::disposeNative()
{
    delete native();
    setNativeData(nullptr);
    if (!resourceCopy.empty()) {
        std::remove(resourceCopy.c_str());
        resourceCopy.clear();
    }
}

void KSound::unload()
{
    if (getStatus() != Loaded)
        return;
    disposeNative();
    KAbstractMedia::unload();
}

void KSound::play()
{
    if (getStatus() == NotLoaded && !load())
        return;
    if (getStatus() != Loaded || !native())
        return;
    if (native()->isAtEnd())
        native()->seek(0.0);
    native()->start();
    KAbstractMedia::play();
}

void KSound::stop()
{
    if (getStatus() != Playing && getStatus() != Paused)
        return;
    native()->pause();
    native()->seek(0.0);
    KAbstractMedia::stop();
}

void KSound::pause()
{
    if (getStatus() != Playing)
        return;
    native()->pause();
    KAbstractMedia::pause();
}

void KSound::resume()
{
    if (getStatus() != Paused)
        return;
    native()->start();
    KAbstractMedia::resume();
}

void KSound::restart()
{
    if (getStatus() != Playing || !native())
        return;
    native()->seek(0.0);
    native()->start();
}

bool KSound::isDonePlaying() { return !native() || native()->isAtEnd(); }

// A player that fails while playing ends the sound early, with one line.
void KSound::updatePlayback()
{
    if (!native())
        return;
    native()->update();
    if (native()->hasFailed() && !failureReported) {
        failureReported = true;
        reportFailure(native()->failure());
    }
}

double KSound::getDuration() { return native() ? native()->duration() : 0.0; }

double KSound::getElapsed() const { return native() ? native()->position() : 0.0; }

bool KSound::getPosition(double& seconds) const { return native() && native()->queryPosition(seconds); }

void KSound::setVolume(double value)
{
    value = std::clamp(value, 0.0, 1.0);
    KAbstractMedia::setVolume(value);
    if (native())
        native()->setVolume(value);
}

void KSound::setBalance(double value)
{
    value = std::clamp(value, -1.0, 1.0);
    KAbstractMedia::setBalance(value);
    if (native())
        native()->setBalance(value);
}

void KSound::setPosition(double fraction)
{
    fraction = std::clamp(fraction, 0.0, 1.0);
    KAbstractMedia::setPosition(fraction);
    if (native())
        native()->seek(fraction * native()->duration());
}
