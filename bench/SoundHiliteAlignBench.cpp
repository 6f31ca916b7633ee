// Placing the markers of a sound highlight in a reading of a story, against
// the word times known to the millisecond. The reading is the speech
// engine's, one sentence at a time at paces of its own and with pauses of
// different lengths between sentences, as a person reads; the markers are
// placed by the rule of three over the sound's length and by the aligner,
// which reads the text with the default voice at the normal pace and snaps
// to the onsets of sound. The counters "aligner_error_ms" and
// "rule_of_three_error_ms" are the mean distance of a marker from its
// word's true start; "align_ms" is the time the aligner takes (its own
// reading of the text included).

#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KPath.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSoundHiliteAligner.h"
#include "kmultimedia/KSoundHiliteEditing.h"
#include "kmultimedia/KSoundHiliteMarker.h"
#include "kmultimedia/KSoundHiliteMedia.h"
#include "kmultimedia/KSpeechSupport.h"
#include "kmultimedia/testing/KSpokenRecording.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const std::vector<std::string> kStory {
    "Once upon a time, a little fox lived at the edge of a quiet forest.",
    "Every morning he walked down to the river to watch the fish.",
    "One day the water was high, and the stepping stones were gone.",
    "The fox sat on the bank and thought about the problem for a long while.",
    "Then a heron landed beside him and asked why he looked so sad.",
    "Together they built a bridge of branches, and the fox crossed at last.",
};

// The voice of the reading: another than the aligner's, when there is one.
KString readerVoice(const KSpeechSupport& support)
{
    for (const KString& voice : support.getVoices()) {
        if (voice != support.getDefaultVoice() && std::string(voice.c_str()).find("English") != std::string::npos)
            return voice;
    }
    return support.getDefaultVoice();
}

void BM_PlaceMarkersInAReading(benchmark::State& state)
{
    KErrorHandler::loadKernelErrors();
    kRegisterMultimediaClasses();
    KMediaManagerPtr manager(new KMediaManager());
    manager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
    manager->setUp(KMediaManager::SpeechSupport);
    KSpeechSupport* support = KSpeechSupport::current();
    if (!support || support->getVoices().empty()) {
        state.SkipWithError("no speech synthesis is installed");
        manager->closeMediaSupport();
        return;
    }
    std::string path = "/tmp/taleloom-bench-reading-" + std::to_string(getpid()) + ".wav";
    KSpokenRecording recording;
    if (!recording.make(kStory, readerVoice(*support), path)) {
        state.SkipWithError(recording.getFailure().c_str());
        manager->closeMediaSupport();
        return;
    }
    KPtr<KSoundHiliteMedia> media(new KSoundHiliteMedia());
    media->setText(recording.getText());
    media->setSoundFile(KFileReference(KPath(KString(path.c_str()), KPath::kHostPlatform)));

    KSoundHiliteEditing::update(*media, recording.getDuration());
    double ruleOfThree = recording.meanError(*media);
    double aligned = -1.0;
    double total = 0.0;
    int64_t rounds = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        KSoundHiliteAligner::Result result
            = KSoundHiliteAligner::update(*media, recording.getDuration(), support->getDefaultVoice());
        double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        total += seconds;
        ++rounds;
        if (result != KSoundHiliteAligner::Result::Aligned) {
            state.SkipWithError("the aligner did not place the markers");
            break;
        }
        aligned = recording.meanError(*media);
    }
    state.counters["words"] = double(recording.getWordTimes().size());
    state.counters["sound_ms"] = double(recording.getDuration());
    state.counters["rule_of_three_error_ms"] = ruleOfThree;
    state.counters["aligner_error_ms"] = aligned;
    if (rounds > 0)
        state.counters["align_ms"] = total * 1000.0 / double(rounds);
    std::printf("mean marker error: aligner %.1f ms, rule of three %.1f ms (%zu words, %d ms of sound)\n", aligned,
                ruleOfThree, recording.getWordTimes().size(), recording.getDuration());
    media.clear();
    manager->closeMediaSupport();
    std::remove(path.c_str());
}
BENCHMARK(BM_PlaceMarkersInAReading)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
