#include "tape/TapeMediaPlay.h"

#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KMediaManager.h"

bool tapeMediaStillPlays(KAbstractMedia& media) { return media.isPlaying() && !media.isDonePlaying(); }

void tapeDriveUnmanaged(KAbstractMedia& media)
{
    if (!media.isPlaying())
        return;
    KMediaManager* manager = KMediaManager::current();
    if (manager && manager->hasMedia(media) && manager->isIdling())
        return;
    media.updatePlayback();
}
