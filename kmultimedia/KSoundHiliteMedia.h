#pragma once

#include "kernel/KBag.h"
#include "kernel/KFileReference.h"
#include "kernel/KString.h"
#include "kernel/KThingPtr.h"
#include "kmultimedia/KAbstractMedia.h"

// Plays a recorded reading of a text and tells, as KSpeech does, which word
// is being heard, from a list of markers: for each word, when it begins in
// the sound. Word events carry "MediaType" "SoundHilite", "WordStart",
// "WordLength" and "ElapsedTime"; a stop tells "WordStart" and "WordLength"
// -1, which clears the highlight. With the feedback flag a 50 ms timer also
// tells "ElapsedTime" alone, the clock of the editor.
//
// The position in the sound is the player's, when it can tell: a highlight
// driven by the wall clock would light each word early by the time the
// audio takes to reach the speakers. While the player cannot tell, a
// stopwatch started with the sound stands in.
//
// Section 1: the bag of markers (each with its class tag), the sound file's
// record and the text's. Markers are kept in ascending time; what a stream
// holds is sorted, clamped into the text and cleared of broken markers as
// it is read.
class KSoundHiliteMedia : public KAbstractMedia {
    K_DECLARE_CLASS(KSoundHiliteMedia)
public:
    static constexpr int32_t kStopwatchInterval = 3600000;
    static constexpr int32_t kFeedbackInterval = 50;
    static constexpr const char* kMediaTypeName = "SoundHilite";

    KSoundHiliteMedia();
    // Copies the markers, the text and the sound file; the copy is not
    // loaded and has nothing lit.
    KSoundHiliteMedia(const KSoundHiliteMedia& other);
    KSoundHiliteMedia& operator=(const KSoundHiliteMedia&) = delete;
    ~KSoundHiliteMedia() override;

    KThing* deepCopy() const override;
    void readFromFile(KFile& file) override;
    void writeToFile(KFile& file, int32_t version) override;
    void describe(KJsonWriter& out) const override;

    bool load() override;
    void unload() override;
    void play() override;
    void stop() override;
    void restart() override;
    // The sound ended, or was stopped; without a sound the media runs on.
    bool isDonePlaying() override;
    void updatePlayback() override;
    void setVolume(double value) override;
    // Seconds, while loaded.
    double getDuration() override;
    virtual void setText(const KString& text);

    const KString& getText() const { return text; }
    const KFileReference& getSoundFile() const { return soundFile; }
    void setSoundFile(const KFileReference& file);
    // The length of the sound in milliseconds, opening it for the question
    // when it is not loaded; 0 when it cannot be played.
    int32_t measureSound();
    KSound* getSound() const;

    int32_t getMarkerCount() const { return markers.getUsedSize(); }
    KSoundHiliteMarker* getMarkerAt(int32_t index) const;
    // In time order, after the markers of the same time.
    void addMarker(KSoundHiliteMarker& marker);
    void removeMarkerAt(int32_t index);
    void clearMarkers();
    // Takes the markers' new times: sorts them again, keeping the order of
    // those at the same time.
    void sortMarkers();

    int32_t getLastWordStart() const { return lastWordStart; }
    int32_t getCurrentWordStart() const { return currentWordStart; }
    int32_t getCurrentWordLength() const { return currentWordLength; }
    // Milliseconds into the sound: the player's position, else the
    // stopwatch's; 0 when not playing.
    int32_t getElapsedTime() const;

    void timerFired(KTimer& timer) override;

private:
    void makeTimers();
    void stopTimers();
    // What a stream gave: markers only, inside the text, in time order.
    void repairMarkers();
    void sendWord(int32_t elapsed);

    KBag markers;
    KFileReference soundFile;
    KString text;
    KSoundPtr sound;
    KTimerPtr stopwatch;
    KTimerPtr feedbackTimer;
    int32_t lastWordStart = -1;
    int32_t currentWordStart = -1;
    int32_t currentWordLength = -1;
};
