#pragma once

#include "kernel/KString.h"
#include "kmultimedia/KMultimediaForward.h"
#include "kmultimedia/KSoundLevelReader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Places the markers of a sound highlight from the voice itself. The speech
// engine reads the text into a file, which says when each word begins in a
// reading and where that reading pauses. The reading is laid over the
// recording by the sound the two hold (a reader's pauses differ from the
// engine's more than the pace of the speech does), and markers then move to
// onsets of sound in the recording (the level rising out of a quiet
// stretch): first the words that begin sentences, to the onsets after the
// recording's longest pauses, in order; then, between those, the words the
// engine read after a pause, to the onsets nearest to them, in order,
// preferring pauses of like length; then any other word that has an onset
// very close. The words between are paced as the reading paces them, over
// the sound between the pauses rather than over the pauses. Markers never
// cross and stay at least 1 ms apart, within the sound.
class KSoundHiliteAligner {
public:
    struct Settings {
        int32_t intervalMs = 10;
        // A stretch is quiet below the louder of the noise floor (the
        // level that a tenth of the stretches do not exceed) plus
        // `marginDb` and the peak less `rangeDb`.
        float marginDb = 12.0f;
        float rangeDb = 35.0f;
        // The quiet an onset must follow; the start of the sound counts.
        int32_t quietMs = 70;
        // How far from its stretched time a word that follows a pause in
        // the reading may be paired with an onset that follows a pause in
        // the recording: wide, since a reader's pace drifts from the
        // engine's; the order of the pairs and the lengths of the pauses
        // choose among the candidates.
        int32_t windowMs = 1500;
        // How far a word the engine reads without a pause before it may
        // then snap from its place between the paired words.
        int32_t snapMs = 150;
        // How close an onset of the reading must be to a word's time to
        // count as that word's.
        int32_t matchMs = 60;
    };
    // A start of sound after a quiet stretch: when, and how long the quiet
    // before it lasted (the start of the sound counts as a long quiet).
    struct Onset {
        int32_t time = 0;
        int32_t quietBefore = 0;
    };
    // A word of the engine's reading: its first character in the text and
    // when it is heard, in milliseconds from the start of the audio.
    struct SpokenWord {
        int32_t start = 0;
        int32_t audioMs = 0;
    };
    // The engine's reading of a text: its words, and the loudness of its
    // audio when it could be read.
    struct Reading {
        std::vector<SpokenWord> words;
        KSoundLevels levels;
    };
    using LevelReaderFactory = std::function<KSoundLevelReader*()>;

    // Where levels come from; tests put a fake there (null for the
    // platform's).
    static void setLevelReaderFactory(LevelReaderFactory factory);
    static std::unique_ptr<KSoundLevelReader> makeLevelReader();

    // The level below which a stretch is quiet.
    static float quietLevel(const KSoundLevels& levels, const Settings& settings);
    // Where sound starts after a quiet stretch, in order.
    static std::vector<Onset> findOnsets(const KSoundLevels& levels, const Settings& settings);
    // Where the first sound starts and the last one ends; false when the
    // whole file is quiet.
    static bool soundExtent(const KSoundLevels& levels, const Settings& settings, int32_t& first, int32_t& last);

    // When each marker's word is heard in the reading: the first spoken
    // word that starts within the marker's word. Words the engine did not
    // report are placed by their characters between the reported ones.
    // Empty when it reported none of them.
    static std::vector<int32_t> spokenTimes(const std::vector<KSoundHiliteMarkerPtr>& markers,
                                            const std::vector<SpokenWord>& spoken);
    // Which markers begin a sentence: those after a word that ends in a
    // full stop, a question or an exclamation mark.
    static std::vector<bool> sentenceStarts(const std::vector<KSoundHiliteMarkerPtr>& markers);
    // The markers' times in a recording of `duration` milliseconds, from
    // their times in the reading. The first words of sentences (when told)
    // go first to the onsets after the recording's longest pauses.
    static std::vector<int32_t> align(const std::vector<int32_t>& spoken, const KSoundLevels& reading,
                                      const KSoundLevels& recording, int32_t duration, const Settings& settings,
                                      const std::vector<bool>& sentenceStarts = {});

    // Has the engine read the text with the voice and speed (0 to 1) into a
    // WAV file at the path, as fast as it makes it, through the speech
    // exceptions. False when there is no engine or it reported no word.
    static bool synthesise(const KString& text, const KString& voice, double speed, const std::string& wavPath,
                           std::vector<SpokenWord>& words);

    enum class Result : int32_t {
        Aligned = 0,
        // No speech engine, or it could not read the text.
        NoSpeech = 1,
        // The sound file cannot be read.
        NoSound = 2,
        // The text has no words.
        NoWords = 3,
    };
    // "Update" from the voice: the media's markers made for the words of
    // its text and placed in its sound of `duration` milliseconds (the
    // sound's own length when 0 or less). Anything but Aligned leaves the
    // markers as they were.
    static Result update(KSoundHiliteMedia& media, int32_t duration, const KString& voice);
    static Result update(KSoundHiliteMedia& media, int32_t duration, const KString& voice, const Settings& settings);
};
