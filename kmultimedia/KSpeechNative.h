#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The interface between KSpeech and a native speech engine. Synthesis runs
// one request at a time on the engine's own thread; each speech plays what
// it gets through a player of its own, so several speeches may sound at
// once. Every call here is made on the event thread.

struct KSpeechVoiceInfo {
    std::string name; // UTF-8, as the engine shows it
    std::string identifier; // the engine's key of the voice
    // The languages the voice speaks ("en-gb"), each with a priority: the
    // lower, the better the voice suits the language.
    std::vector<std::pair<std::string, int32_t>> languages;
};

// A word as the engine reports it: its 1-based character position in the
// text and the time of its start in the audio, in milliseconds.
struct KSpeechRawWord {
    int32_t position = 0;
    int32_t audioMs = 0;
};

struct KSpeechRequest {
    std::string text; // UTF-8
    std::string voice; // an identifier of the engine's voice list
    bool female = false;
    int32_t wordsPerMinute = 175;
};

class KSpeechNative {
public:
    KSpeechNative() = default;
    virtual ~KSpeechNative() = default;
    KSpeechNative(const KSpeechNative&) = delete;
    KSpeechNative& operator=(const KSpeechNative&) = delete;

    // Makes the player; with a render path the audio goes into a 16-bit
    // WAV file there, as fast as it is made, instead of to the speakers.
    virtual bool open(const char* renderPath) = 0;
    // Drops what an earlier request still has to say and queues this one;
    // its audio plays as soon as the first part is made.
    virtual bool speak(const KSpeechRequest& request) = 0;
    virtual void pause() = 0;
    virtual void resume() = 0;
    // Drops the request and silences the player at once.
    virtual void cancel() = 0;
    virtual void setVolume(double volume) = 0;
    // Milliseconds of the request's audio heard so far.
    virtual int32_t positionMs() const = 0;
    // Moves the words the engine has reported since the last call to `out`.
    virtual void takeWords(std::vector<KSpeechRawWord>& out) = 0;
    // Reads the player's messages.
    virtual void update() = 0;
    // The request was spoken to its end, or the player failed.
    virtual bool isDone() const = 0;
};

class KSpeechEngine {
public:
    virtual ~KSpeechEngine() = default;
    // The voices, in the engine's order; empty when the engine cannot run.
    virtual const std::vector<KSpeechVoiceInfo>& voices() = 0;
    virtual KSpeechNative* createSpeech() = 0;
    // Ends the engine's thread and lets the engine go; the next use starts
    // it again.
    virtual void shutdown() = 0;
};

// The platform's engine, a single object; never null.
KSpeechEngine& knsSpeechEngine();
