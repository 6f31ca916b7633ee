#include "kmultimedia/KSoundHiliteFile.h"

#include "kernel/KClass.h"
#include "kernel/KError.h"
#include "kernel/KFile.h"
#include "kmultimedia/KSoundHiliteMedia.h"

#include <algorithm>

bool KSoundHiliteFile::read(KFile& file, int32_t& duration, KSoundHiliteMedia& media)
{
    duration = std::max(0, file.readLong());
    // The class stream must be the media's: another class would be passed
    // over in silence and leave an empty media that looks sound.
    int32_t start = file.getPosition();
    int32_t tag = file.readLong();
    if (file.getError() || tag != KClass::computeClassID("KSoundHiliteMedia")) {
        if (!file.getError())
            file.setError(KError::CouldNotReadFile);
        media.clearMarkers();
        media.setText(KString());
        media.setSoundFile(KFileReference());
        return false;
    }
    file.setPosition(start);
    media.readFromFile(file);
    return file.getError() == 0;
}

void KSoundHiliteFile::write(KFile& file, int32_t duration, KSoundHiliteMedia& media)
{
    file.writeLong(duration);
    media.writeToFile(file, 1);
}

bool KSoundHiliteFile::load(const KFileReference& reference, int32_t& duration, KSoundHiliteMedia& media)
{
    duration = 0;
    KFile file(reference);
    file.setMode(KFileModeReadBuffered);
    file.open();
    if (!file.isOpen() || file.getError()) {
        file.close();
        return false;
    }
    bool sound = read(file, duration, media);
    file.close();
    return sound;
}

bool KSoundHiliteFile::save(const KFileReference& reference, int32_t duration, KSoundHiliteMedia& media)
{
    KFile file(reference);
    file.setMode(KFileModeMemory);
    file.clearError();
    if (!file.beginAtomicWrite())
        return false;
    write(file, duration, media);
    return file.commitAtomicWrite() && file.getError() == 0;
}
