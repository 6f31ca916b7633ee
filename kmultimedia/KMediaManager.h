#pragma once

#include "kernel/KThing.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KMediaSupport.h"
#include "kmultimedia/KMultimediaForward.h"

#include <vector>

using KMediaSupportFlagSet = int32_t;

// The one object that knows every loaded medium. While any of them plays or
// is paused it stands in the application's idle list, and each idle pass
// advances the playing media and ends (or loops) those that are done. It
// also opens and closes the platform supports of sound, movies and speech.
// A new manager replaces the earlier one as the current manager.
class KMediaManager : public KThing {
    K_DECLARE_CLASS(KMediaManager)
public:
    enum SupportFlag : int32_t {
        MovieSupport = 1,
        SoundSupport = 2,
        SpeechSupport = 4,
        SupportOpen = 8,
    };
    // The engine kinds each support is told to use by setUp.
    static constexpr int32_t kMovieKinds = 3;
    static constexpr int32_t kSoundKinds = 15;
    static constexpr int32_t kSpeechKinds = 7;
    static constexpr int32_t kListCapacity = 64;

    KMediaManager();
    KMediaManager(const KMediaManager&) = delete;
    KMediaManager& operator=(const KMediaManager&) = delete;
    ~KMediaManager() override;

    static KMediaManager* current();

    // The support objects, made by the library; the manager holds them. One
    // of MovieSupport, SoundSupport or SpeechSupport.
    void setSupport(int32_t which, KMediaSupport* support);
    KMediaSupport* getSupport(int32_t which) const;

    // Only before opening; otherwise kernel error 4.
    void setActiveMediaSupport(KMediaSupportFlagSet flags);
    KMediaSupportFlagSet getRequested() const { return requested; }
    KMediaSupportFlagSet getOpened() const { return opened; }

    void setUp(KMediaSupportFlagSet flags);
    void openMediaSupport();
    void closeMediaSupport();

    // The media list, not owning: a medium enters on load and leaves on
    // unload or when it dies.
    void addMedia(KAbstractMedia& media);
    void removeMedia(KAbstractMedia& media);
    bool hasMedia(const KAbstractMedia& media) const;
    int32_t mediaCount() const { return int32_t(mediaList.size()); }
    KAbstractMedia* getMediaAt(int32_t index) const;

    void stopAllMedia();
    void unloadAllMedia();

    // Enters the idle list while any listed medium plays or is paused and
    // leaves it otherwise.
    void recheckIdle();
    bool isIdling() const;

    // The idle pass.
    void idle() override;

private:
    KMediaSupportPtr& supportSlot(int32_t which);
    void openOne(int32_t which);
    void closeOne(int32_t which);

    std::vector<KAbstractMedia*> mediaList;
    KMediaSupportFlagSet requested = MovieSupport | SoundSupport | SpeechSupport;
    KMediaSupportFlagSet opened = 0;
    KMediaSupportPtr movieSupport;
    KMediaSupportPtr soundSupport;
    KMediaSupportPtr speechSupport;
};
