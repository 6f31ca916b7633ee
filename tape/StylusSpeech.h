#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"
#include "tape/TapeObject.h"

// A text spoken by a synthetic voice while the story runs. It draws
// nothing. With `waitForEnd` the tape stands still until the voice has
// finished. Without a speech engine, or when the speech cannot start, the
// user is told once and the element passes, so that the story goes on.
//
// The element keeps its medium for its whole life; the tape's stop silences
// it together with all other media.
class StylusSpeech : public TapeObject {
    K_DECLARE_CLASS(StylusSpeech)
public:
    static constexpr bool kDefaultWaitForEnd = true;
    static constexpr double kDefaultVolume = 1.0;
    // The media's own speed, taken when the settings ask for none.
    static constexpr double kDefaultSpeed = 0.5;

    StylusSpeech();
    StylusSpeech(const StylusSpeech& other);
    ~StylusSpeech() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    void startPlaying() override;
    void playStep() override;

    virtual void setText(const KString& value);
    virtual void setVoice(const KString& value);

    const KString& getText() const { return text; }
    const KString& getVoice() const { return voice; }
    bool getWaitForEnd() const { return waitForEnd; }
    void setWaitForEnd(bool value) { waitForEnd = value; }
    double getVolume() const { return volume; }
    // Cut to 0.0 .. 1.0; not a number is silence.
    void setVolume(double value);
    KSpeech& getSpeech() const;

    // The speed the settings ask for: a value of "SpeechSpeed" from 0 to
    // 100 when "CustomSpeechSpeed" is on, 50 and 65535 meaning the voice's
    // own. Negative when the media's own speed is to be taken.
    static double speedFromSettings(bool custom, double stored);

private:
    void applySpeed();
    void passOnToSpeech();
    void pass(Tape& tape);

    KSpeechPtr speech;
    KString text;
    KString voice;
    bool waitForEnd = kDefaultWaitForEnd;
    double volume = kDefaultVolume;
};
