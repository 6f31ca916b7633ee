#include "tape/StylusSound.h"

#include "kernel/KClass.h"
#include "kernel/KClassReader.h"
#include "kernel/KClassWriter.h"
#include "kernel/KFile.h"
#include "kernel/KJsonWriter.h"
#include "kmultimedia/KSound.h"
#include "kmultimedia/KSoundSupport.h"
#include "tape/Tape.h"
#include "tape/TapeHost.h"
#include "tape/TapeMediaImport.h"
#include "tape/TapeMediaPlay.h"

#include <algorithm>
#include <cmath>

K_DEFINE_CLASS(StylusSound, TapeObject)

double tapeClampVolume(double value)
{
    if (std::isnan(value))
        return 0.0;
    return std::clamp(value, 0.0, 1.0);
}

StylusSound::StylusSound() { setType(SoundType); }

// The copy makes its own medium when it first plays.
StylusSound::StylusSound(const StylusSound& other)
    : TapeObject(other)
    , file(other.file)
    , waitForEnd(other.waitForEnd)
    , volume(other.volume)
{
    setType(SoundType);
}

StylusSound::~StylusSound() { clearSound(); }

KThing* StylusSound::deepCopy() const { return new StylusSound(*this); }

KSound* StylusSound::getSound() const { return sound.get(); }

KPath StylusSound::getSoundPath() const { return tapeMediaPath(getTape(), file); }

void StylusSound::setVolume(double value) { volume = tapeClampVolume(value); }

// --- The medium and its file ------------------------------------------------

void StylusSound::setFile(const KFileReference& value)
{
    clearSound();
    file = value;
    noteChanged();
}

void StylusSound::clearFile() { setFile(KFileReference()); }

void StylusSound::setSound(KSound& value)
{
    if (sound.get() == &value)
        return;
    clearSound();
    sound = value;
}

void StylusSound::clearSound()
{
    if (!sound)
        return;
    KSoundPtr ending = sound;
    sound.clear();
    ending->stop();
    ending->unload();
}

bool StylusSound::openSound(const KPath& path)
{
    if (KSoundSupport::availableEngines() == 0) {
        TapeHost::get().checkSoundOutput();
        return false;
    }
    KSoundPtr opened(new KSound());
    opened->createFromFile(KFileReference(path));
    if (!opened->load())
        return false;
    setSound(*opened);
    return true;
}

// --- Playing ------------------------------------------------------------------

void StylusSound::startPlaying()
{
    Tape* tape = getTape();
    if (!tape)
        return;
    KPath path = getSoundPath();
    if (path.isEmpty() || !KFileReference(path).doesExist()) {
        pass(*tape);
        return;
    }
    if (sound) {
        // Left playing or paused by a loop or a pause: it starts over.
        sound->stop();
        sound->setPosition(0.0);
    } else if (!openSound(path)) {
        pass(*tape);
        return;
    }
    sound->setVolume(volume);
    sound->play();
    if (!sound->isPlaying()) {
        pass(*tape);
        return;
    }
    if (!waitForEnd)
        tape->clearPlayingObject();
}

void StylusSound::pass(Tape& tape)
{
    clearSound();
    tape.clearPlayingObject();
}

void StylusSound::playStep()
{
    Tape* tape = getTape();
    if (!tape || !waitForEnd)
        return;
    if (!sound) {
        tape->clearPlayingObject();
        return;
    }
    tapeDriveUnmanaged(*sound);
    if (sound && tapeMediaStillPlays(*sound))
        return;
    stopPlaying();
    tape->clearPlayingObject();
}

void StylusSound::stopPlaying() { clearSound(); }

// --- Media ----------------------------------------------------------------------

bool StylusSound::findMissingMedia(KDirectory& directory, KDirectory* second)
{
    bool changed = false;
    bool gaveUp = tapeFindMissingMedia(file, getTape(), directory, second, changed);
    if (changed) {
        clearSound();
        noteChanged();
    }
    return gaveUp;
}

void StylusSound::collectMedia(KDirectory& from, KDirectory& to)
{
    if (tapeCollectMedia(file, getTape(), from, to)) {
        clearSound();
        noteChanged();
    }
}

bool StylusSound::replaceMedia(const KFileReference& oldFile, const KFileReference& newFile)
{
    if (!tapeMediaRefersTo(getTape(), file, oldFile))
        return false;
    setFile(newFile);
    return true;
}

void StylusSound::addMediaName(KStringBag& names) { tapeAddMediaName(file, names); }

bool StylusSound::usesMediaNamed(const KString& name)
{
    return !file.getPath().isEmpty() && file.getObjectName() == name;
}

// --- Persistence ------------------------------------------------------------------

void StylusSound::writeToFile(KFile& out, int32_t version)
{
    KClassWriter writer;
    writer.begin(out, classRecord);
    writer.newSection(1);
    TapeObject::writeToFile(out, version);
    file.writeToFile(out, version);
    out.writeBool(waitForEnd);
    out.writeDouble(volume);
    writer.end();
}

void StylusSound::readFromFile(KFile& in)
{
    clearSound();
    file = KFileReference();
    waitForEnd = kDefaultWaitForEnd;
    volume = kDefaultVolume;
    auto readMain = [&](int32_t) {
        TapeObject::readFromFile(in);
        setType(SoundType);
        tapeReadMediaReference(in, file);
        waitForEnd = in.readBool();
        volume = tapeClampVolume(in.readDouble());
    };
    KClassReader::readSections(in, classRecord, { { 1, readMain } });
    noteChanged();
}

void StylusSound::describe(KJsonWriter& out) const
{
    TapeObject::describe(out);
    out.objectMember("file", &file);
    out.member("waitForEnd", waitForEnd);
    out.member("volume", volume);
}
