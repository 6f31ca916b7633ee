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

// What was heard when, for an export that puts the sound of a traced play
// on a timeline. A clip is a stretch of one file heard from `offsetMs`
// into it, from `startMs` to `endMs` of story time.
struct TraceAudioClip {
    std::string path;
    int32_t startMs = 0;
    // -1 while it still plays; a clip never outlasts its file.
    int32_t endMs = -1;
    int32_t offsetMs = 0;
    double volume = 1.0;
    // -1 left to 1 right.
    double balance = 0.0;
};

class TraceAudioLog {
public:
    // Speech files are kept in `folder`, which must outlive the log's use.
    explicit TraceAudioLog(std::string folder);
    ~TraceAudioLog();
    TraceAudioLog(const TraceAudioLog&) = delete;
    TraceAudioLog& operator=(const TraceAudioLog&) = delete;

    // The log the players write into, or null.
    static TraceAudioLog* current();
    // Story time 0 on the clock.
    void setZero(uint32_t clockTime) { zero = clockTime; }
    int32_t nowMs() const;

    // Returns the clip's number for `stop`.
    int32_t start(const std::string& path, int32_t offsetMs, double volume, double balance);
    void stop(int32_t clip);
    // A copy of a file the player is about to throw away, kept for the log.
    std::string keep(const std::string& path);

    const std::vector<TraceAudioClip>& getClips() const { return clips; }
    // Clips still playing end at `endMs`.
    void closeAll(int32_t endMs);

private:
    std::string folder;
    std::vector<TraceAudioClip> clips;
    uint32_t zero = 0;
    int32_t kept = 0;
    TraceAudioLog* previous = nullptr;
};

class TraceSoundPlayer final : public KSoundNative {
public:
    TraceSoundPlayer() = default;
    ~TraceSoundPlayer() override { closeClip(); }

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
    void setVolume(double value) override;
    void setBalance(double value) override;
    void update() override { }
    bool isAtEnd() const override { return position() >= length; }
    bool hasFailed() const override { return false; }
    const std::string& failure() const override { return reason; }

    // Makes every new sound one of these, until uninstalled.
    static void install();
    static void uninstall();

private:
    void openClip();
    void closeClip();
    void restartClip();

    std::string path;
    double volume = 1.0;
    double balance = 0.0;
    int32_t clip = -1;
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
