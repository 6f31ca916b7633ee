#include "kmultimedia/KAbstractMedia.h"

#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KMediaFeedbackEvent.h"
#include "kmultimedia/KMediaManager.h"

#include <algorithm>

K_DEFINE_ABSTRACT_CLASS(KAbstractMedia, KThing)

KAbstractMedia::KAbstractMedia() = default;

KAbstractMedia::KAbstractMedia(const KAbstractMedia& other)
    : KThing(other)
{
    KErrorHandler::notice("Invalid Copy Constructor!");
}

KAbstractMedia& KAbstractMedia::operator=(const KAbstractMedia& other)
{
    if (this == &other)
        return *this;
    streamingMode = other.streamingMode;
    mediaFlags = other.mediaFlags;
    volume = other.volume;
    balance = other.balance;
    speed = other.speed;
    position = other.position;
    nativeData = nullptr;
    status = NotLoaded;
    return *this;
}

// A medium that dies loaded must not stay in the manager's list.
KAbstractMedia::~KAbstractMedia() { leaveManager(); }

void KAbstractMedia::mustBeOverloaded(const KSourceLocation& where)
{
    KErrorHandler::notice("Must be overloaded in child class!", where);
}

double KAbstractMedia::getDuration() { return 0.0; }
void KAbstractMedia::setVolume(double value) { volume = value; }
void KAbstractMedia::setBalance(double value) { balance = value; }
void KAbstractMedia::setSpeed(double value) { speed = value; }
double KAbstractMedia::getSpeed() { return 0.5; }
void KAbstractMedia::setPosition(double value) { position = value; }
void KAbstractMedia::rewind() { setPosition(0.0); }
void KAbstractMedia::toEnd() { setPosition(1.0); }

void KAbstractMedia::clear()
{
    unload();
    nativeData = nullptr;
}

bool KAbstractMedia::createFromResource(int16_t)
{
    mustBeOverloaded();
    return false;
}

bool KAbstractMedia::createFromFile(const KDiskObjectReference&)
{
    mustBeOverloaded();
    return false;
}

bool KAbstractMedia::load()
{
    if (status == NotLoaded) {
        status = Loaded;
        enterManager();
    }
    return true;
}

void KAbstractMedia::unload()
{
    if (status != Loaded)
        return;
    status = NotLoaded;
    nativeData = nullptr;
    leaveManager();
}

void KAbstractMedia::play()
{
    if (status != Loaded)
        return;
    status = Playing;
    recheckManager();
}

void KAbstractMedia::restart() { }

void KAbstractMedia::stop()
{
    if (status != Playing && status != Paused)
        return;
    status = Loaded;
    recheckManager();
}

void KAbstractMedia::pause()
{
    if (status == Playing)
        status = Paused;
}

void KAbstractMedia::resume()
{
    if (status == Paused)
        status = Playing;
}

bool KAbstractMedia::isPlaying() { return status == Playing; }
bool KAbstractMedia::isPaused() { return status == Paused; }

bool KAbstractMedia::isDonePlaying()
{
    mustBeOverloaded();
    return true;
}

void KAbstractMedia::updatePlayback() { }

void KAbstractMedia::setStreamingMode(KMediaStreamingMode mode)
{
    if (status != NotLoaded) {
        KErrorHandler::raiseError(KError::ObjectInUse);
        return;
    }
    streamingMode = mode;
}

void KAbstractMedia::setLooping(bool on)
{
    if (on)
        mediaFlags.set(Looping);
    else
        mediaFlags.clear(Looping);
}

bool KAbstractMedia::addTarget(KThing& target)
{
    if (std::find(targets.begin(), targets.end(), &target) != targets.end())
        return false;
    targets.push_back(&target);
    return true;
}

bool KAbstractMedia::removeTarget(KThing& target)
{
    auto it = std::find(targets.begin(), targets.end(), &target);
    if (it == targets.end())
        return false;
    targets.erase(it);
    return true;
}

KEventReturn KAbstractMedia::sendFeedback(KMediaFeedbackEvent* event)
{
    event->setSource(this);
    for (KThing* target : targets)
        event->addTarget(*target);
    return processNow(event);
}

void KAbstractMedia::enterManager()
{
    if (KMediaManager* manager = KMediaManager::current())
        manager->addMedia(*this);
}

void KAbstractMedia::leaveManager()
{
    if (KMediaManager* manager = KMediaManager::current())
        manager->removeMedia(*this);
}

void KAbstractMedia::recheckManager()
{
    if (KMediaManager* manager = KMediaManager::current())
        manager->recheckIdle();
}
