#pragma once

#include "kmultimedia/KSoundNative.h"
#include "kmultimedia/KSpeechNative.h"

#include <memory>
#include <string>
#include <vector>

// Sound and speech that take their time by the program's clock instead of
// the sound card's, for a play that runs on a clock moved by hand: as fast
// as the computer goes, and the same every time.
//
// A sound asks the platform's player only for the file's length; a speech
// is made by the platform's engine into a file first, which gives its words
// and its length. Neither is heard.

class TraceSoundPlayer final : public KSoundNative {
public:
    TraceSoundPlayer() = default;

    bool open(const char* path, const char* renderPath) override;
    void start() override;
    void pause() override;
    void seek(double seconds) override;
    double duration() const override { return length; }
    double position() const override;
    bool queryPosition(double& seconds) const override
    {
        seconds = position();
        return playing;
    }
    void setVolume(double) override { }
    void setBalance(double) override { }
    void update() override { }
    bool isAtEnd() const override { return position() >= length; }
    bool hasFailed() const override { return false; }
    const std::string& failure() const override { return reason; }

    // Makes every new sound one of these, until uninstalled.
    static void install();
    static void uninstall();

private:
    double length = 0.0;
    double offset = 0.0;
    uint32_t startedAt = 0;
    bool playing = false;
    std::string reason;
};

// The platform's speech engine behind the program's clock.
class TraceSpeechEngine final : public KSpeechEngine {
public:
    // How long a speech may take to be made, in real time.
    static constexpr int32_t kMakingLimitMs = 60000;

    TraceSpeechEngine();
    ~TraceSpeechEngine() override;

    const std::vector<KSpeechVoiceInfo>& voices() override;
    KSpeechNative* createSpeech() override;
    void shutdown() override;

private:
    std::string folder;
    int32_t made = 0;
};
