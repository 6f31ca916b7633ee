#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"

#include <cstdint>
#include <string>
#include <vector>

// A stand-in for a person's reading of a text, made by the speech engine
// with word times known to the millisecond: each sentence is read at a pace
// of its own and the sentences are joined by pauses of different lengths,
// as a reader pauses for breath. It measures how well markers are placed in
// a sound without a person to listen.
class KSpokenRecording {
public:
    // The paces (0 to 1) and the pauses (milliseconds) taken in turn.
    std::vector<double> paces { 0.35, 0.6, 0.45, 0.7, 0.5, 0.4 };
    std::vector<int32_t> pauses { 350, 900, 250, 1300, 600, 450 };
    int32_t leadIn = 700;
    int32_t leadOut = 500;

    // Reads the sentences with the voice into a WAV file at the path. The
    // text is the sentences joined by single spaces. False, with `failure`
    // saying why, when the engine could not read them.
    bool make(const std::vector<std::string>& sentences, const KString& voice, const std::string& path);

    const KString& getText() const { return text; }
    int32_t getDuration() const { return duration; }
    // When each word of the text (in the order the editor lays them out)
    // begins in the recording.
    const std::vector<int32_t>& getWordTimes() const { return wordTimes; }
    const std::string& getFailure() const { return failure; }

    // The mean distance in milliseconds between the markers' times and the
    // known ones; -1 when the counts differ.
    double meanError(const KSoundHiliteMedia& media) const;

private:
    bool appendReading(const std::string& sentence, const KString& voice, double pace, std::vector<uint8_t>& pcm);

    KString text;
    int32_t duration = 0;
    int32_t bytesPerMs = 0;
    std::vector<int32_t> wordTimes;
    std::string failure;
};
