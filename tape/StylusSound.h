#pragma once

#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMultimediaForward.h"
#include "tape/TapeObject.h"

// A sound file played while the story runs. It draws nothing. With
// `waitForEnd` the tape stands still until the sound has ended; without it
// the tape goes on at once and the sound plays under what follows, so that
// several sounds may overlap, each with a medium of its own. A sound whose
// file is gone or cannot be decoded passes without a word.
class StylusSound : public TapeObject {
    K_DECLARE_CLASS(StylusSound)
public:
    static constexpr bool kDefaultWaitForEnd = true;
    static constexpr double kDefaultVolume = 1.0;

    StylusSound();
    StylusSound(const StylusSound& other);
    ~StylusSound() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;
    void stopPlaying() override;
    bool findMissingMedia(KDirectory& directory, KDirectory* second) override;
    void collectMedia(KDirectory& from, KDirectory& to) override;
    bool replaceMedia(const KFileReference& oldFile, const KFileReference& newFile) override;
    void addMediaName(KStringBag& names) override;
    bool usesMediaNamed(const KString& name) override;

    // A new file lets go of the medium made from the old one.
    virtual void setFile(const KFileReference& value);
    virtual void clearFile();
    // The medium that plays; the one before is stopped and closed.
    virtual void setSound(KSound& value);
    // Stops, closes and drops the medium.
    virtual void clearSound();

    const KFileReference& getFile() const { return file; }
    // Where the file is read from now (see tapeMediaPath).
    KPath getSoundPath() const;
    KSound* getSound() const;
    bool getWaitForEnd() const { return waitForEnd; }
    void setWaitForEnd(bool value) { waitForEnd = value; }
    double getVolume() const { return volume; }
    // Cut to 0.0 .. 1.0; not a number is silence.
    void setVolume(double value);

private:
    // Loads a new medium from the path; false when there is no sound output
    // or the file cannot be decoded.
    bool openSound(const KPath& path);
    void pass(Tape& tape);

    KFileReference file;
    KSoundPtr sound;
    bool waitForEnd = kDefaultWaitForEnd;
    double volume = kDefaultVolume;
};

// A volume read from a document or given by a dialog, cut to 0.0 .. 1.0;
// not a number is 0.0.
double tapeClampVolume(double value);
