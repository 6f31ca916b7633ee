#include "kmultimedia/KMediaManager.h"

#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KErrorHandler.h"
#include "kmultimedia/KAbstractMedia.h"
#include "windowing/KApplication.h"

#include <algorithm>

K_DEFINE_CLASS(KMediaManager, KThing)

namespace {
KMediaManager* gCurrentManager = nullptr;
}

KMediaManager::KMediaManager()
{
    mediaList.reserve(kListCapacity);
    gCurrentManager = this;
}

KMediaManager::~KMediaManager()
{
    if (gCurrentManager == this)
        gCurrentManager = nullptr;
}

KMediaManager* KMediaManager::current() { return gCurrentManager; }

KMediaSupportPtr& KMediaManager::supportSlot(int32_t which)
{
    if (which == MovieSupport)
        return movieSupport;
    if (which == SoundSupport)
        return soundSupport;
    return speechSupport;
}

void KMediaManager::setSupport(int32_t which, KMediaSupport* support) { supportSlot(which) = support; }

KMediaSupport* KMediaManager::getSupport(int32_t which) const
{
    return const_cast<KMediaManager*>(this)->supportSlot(which).get();
}

void KMediaManager::setActiveMediaSupport(KMediaSupportFlagSet flags)
{
    if (opened & SupportOpen) {
        KErrorHandler::raiseError(KError::ObjectInUse);
        return;
    }
    requested = flags;
}

void KMediaManager::setUp(KMediaSupportFlagSet flags)
{
    requested = flags;
    const std::pair<int32_t, int32_t> kinds[] = {
        { MovieSupport, kMovieKinds },
        { SoundSupport, kSoundKinds },
        { SpeechSupport, kSpeechKinds },
    };
    for (auto [which, kind] : kinds) {
        if ((flags & which) && getSupport(which))
            getSupport(which)->setKinds(kind);
    }
    openMediaSupport();
}

void KMediaManager::openMediaSupport()
{
    if (opened & SupportOpen) {
        KErrorHandler::raiseError(KError::ObjectInUse);
        return;
    }
    openOne(SoundSupport);
    openOne(MovieSupport);
    openOne(SpeechSupport);
    opened |= SupportOpen;
}

// A support that cannot start its engines still counts as opened: its media
// then fail to load one by one, which the callers handle.
void KMediaManager::openOne(int32_t which)
{
    if (!(requested & which))
        return;
    if (KMediaSupport* support = getSupport(which))
        support->open();
    opened |= which;
}

void KMediaManager::closeOne(int32_t which)
{
    if (!(opened & which))
        return;
    if (KMediaSupport* support = getSupport(which))
        support->close();
}

void KMediaManager::closeMediaSupport()
{
    stopAllMedia();
    unloadAllMedia();
    closeOne(SoundSupport);
    closeOne(MovieSupport);
    closeOne(SpeechSupport);
    opened = 0;
}

void KMediaManager::addMedia(KAbstractMedia& media)
{
    if (!hasMedia(media))
        mediaList.push_back(&media);
}

void KMediaManager::removeMedia(KAbstractMedia& media)
{
    auto it = std::find(mediaList.begin(), mediaList.end(), &media);
    if (it == mediaList.end())
        return;
    mediaList.erase(it);
    recheckIdle();
}

bool KMediaManager::hasMedia(const KAbstractMedia& media) const
{
    return std::find(mediaList.begin(), mediaList.end(), &media) != mediaList.end();
}

KAbstractMedia* KMediaManager::getMediaAt(int32_t index) const
{
    if (index < 0 || index >= mediaCount())
        return nullptr;
    return mediaList[size_t(index)];
}

// stop() may change the list, so the pass goes over a copy and skips media
// that left it meanwhile.
void KMediaManager::stopAllMedia()
{
    std::vector<KAbstractMedia*> copy = mediaList;
    for (KAbstractMedia* media : copy) {
        if (hasMedia(*media))
            media->stop();
    }
}

// A medium whose unload leaves it loaded is taken out all the same, so that
// the loop always ends.
void KMediaManager::unloadAllMedia()
{
    while (!mediaList.empty()) {
        KAbstractMedia* media = mediaList.front();
        media->stop();
        media->unload();
        removeMedia(*media);
    }
}

void KMediaManager::recheckIdle()
{
    KApplication* application = KApplication::current();
    if (!application)
        return;
    bool active = std::any_of(mediaList.begin(), mediaList.end(),
                              [](KAbstractMedia* media) { return media->isPlaying() || media->isPaused(); });
    if (active)
        application->addIdler(*this);
    else
        application->removeIdler(*this);
}

bool KMediaManager::isIdling() const
{
    KApplication* application = KApplication::current();
    return application && application->isIdler(*this);
}

// Media that a pass unloads or that a receiver drops leave the list; the
// copy keeps the pass on its own order and the membership test skips them.
void KMediaManager::idle()
{
    std::vector<KAbstractMedia*> copy = mediaList;
    for (KAbstractMedia* media : copy) {
        if (!hasMedia(*media) || !media->isPlaying())
            continue;
        media->updatePlayback();
        if (!hasMedia(*media) || !media->isDonePlaying())
            continue;
        if (media->isLooping())
            media->restart();
        else
            media->stop();
    }
}
