#pragma once

#include "kernel/KBag.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechRewriter.h"

// The speech that tape elements play: the text goes to the engine through
// the speech exceptions (KSpeechRewriter), and each word the engine reports
// in the rewritten text is told to the receivers as the range of the given
// text it stands for, so the reader sees the word as written lit.
//
// An inner plain KSpeech, `engine`, does the speaking, with word feedback on
// and this object as its only receiver. This object never speaks itself: its
// own state follows the engine's, so the media manager drives both.
class KExtendedSpeech : public KSpeech {
    K_DECLARE_CLASS(KExtendedSpeech)
public:
    KExtendedSpeech();
    KExtendedSpeech(const KExtendedSpeech&) = delete;
    KExtendedSpeech& operator=(const KExtendedSpeech&) = delete;
    ~KExtendedSpeech() override;

    // Keeps the text as given and hands the engine its rewritten form, read
    // through the current exceptions handler.
    void setText(const KString& text) override;
    void setVoice(const KString& name) override;

    bool load() override;
    void unload() override;
    void play() override;
    void restart() override;
    void stop() override;
    void pause() override;
    void resume() override;
    bool isDonePlaying() override;
    void updatePlayback() override;
    void clear() override;
    void setVolume(double value) override;
    void setSpeed(double value) override;
    double getSpeed() override;

    // The engine's word events, mapped and passed on.
    KEventReturn handleEvent(KEvent& event) override;

    const KString& getGivenText() const { return givenText; }
    const KString& getSpokenText() const { return spokenText; }
    const KBag& getPositionMap() const { return positionMap; }
    KSpeech& getEngine() const { return *engine; }

private:
    void passWordOn(KMediaFeedbackEvent& report);

    KSpeechPtr engine;
    KBag positionMap;
    KString givenText;
    KString spokenText;
    // The same map, for mapping words without going through the bag.
    std::vector<int32_t> map;
};
