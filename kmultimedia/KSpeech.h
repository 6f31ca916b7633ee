#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KAbstractMedia.h"
#include "kmultimedia/KSpeechWords.h"

#include <deque>
#include <string>

class KSpeechNative;

// Speaks a text with a voice of the speech engine and tells, as each word
// is heard, which word it is: with the feedback flag, a KMediaFeedbackEvent
// with "MediaType" "Speech", "WordStart", "WordLength" and "ElapsedTime"
// (milliseconds of audio) reaches the receivers when playback reaches the
// word, not when the engine made it. Texts are cut at 10,000 characters
// and spoken as plain text.
class KSpeech : public KAbstractMedia {
    K_DECLARE_CLASS(KSpeech)
public:
    static constexpr int32_t kMaximumLength = 10000;

    KSpeech();
    KSpeech(const KSpeech&) = delete;
    KSpeech& operator=(const KSpeech&) = delete;
    ~KSpeech() override;

    virtual void setText(const KString& text);
    // A new name stops and unloads the speech; the next play loads the voice.
    // Names the engine does not know speak with the default voice, and the
    // name is kept.
    virtual void setVoice(const KString& name);
    virtual void speak(const KString& voice, const KString& text);
    virtual void stopSpeaking();

    const KString& getText() const { return text; }
    const KString& getVoiceName() const { return voiceName; }
    int32_t getWordStart() const { return wordStart; }
    int32_t getWordLength() const { return wordLength; }

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

    // With a path, the next load sends the speech into a WAV file there,
    // as fast as it is made, instead of to the speakers.
    void setRenderFile(const std::string& path) { renderPath = path; }

protected:
    // For speeches that learn their words from elsewhere.
    void setWord(int32_t start, int32_t length)
    {
        wordStart = start;
        wordLength = length;
    }

private:
    KSpeechNative* native() const { return static_cast<KSpeechNative*>(getNativeData()); }
    void disposeNative();
    void collectWords();
    void deliverWord(const KSpeechWord& word);

    KString voiceName;
    KString text;
    int32_t wordStart = -1;
    int32_t wordLength = -1;
    std::string renderPath;
    KSpeechWordCleaner cleaner;
    std::deque<KSpeechWord> pending;
};
