// Rewriting a text of 10,000 characters through 2,000 speech exceptions,
// against synthesising the same text with the speech engine. The rewriting
// runs before each speech starts, so it must stay a small share of the
// synthesis: the counter "ratio_percent" is the rewriting's processor time
// over the synthesis's, in percent (target at most 1). The synthesis renders
// into a WAV file as fast as the engine makes it; it is timed once per run.

#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kmultimedia/KMediaManager.h"
#include "kmultimedia/KMultimediaClasses.h"
#include "kmultimedia/KSpeech.h"
#include "kmultimedia/KSpeechExceptionHandler.h"
#include "kmultimedia/KSpeechRewriter.h"
#include "kmultimedia/KSpeechSupport.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int32_t kTextLength = 10000;
constexpr int32_t kExceptions = 2000;

double cpuSeconds(clockid_t clock)
{
    timespec now {};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

std::string randomWord(std::mt19937& random, int32_t shortest, int32_t longest)
{
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz";
    std::string word;
    int32_t length = shortest + int32_t(random() % uint32_t(longest - shortest + 1));
    for (int32_t i = 0; i < length; ++i)
        word += letters[random() % 26];
    return word;
}

struct Material {
    std::vector<std::string> written;
    KSpeechExceptionHandlerPtr handler;
    KString text;
};

// Names and abbreviations to replace, and a text in which about one word
// in four is one of them, in any case and with the marks of a story.
Material& material()
{
    static Material made = [] {
        Material m;
        KErrorHandler::loadKernelErrors();
        kRegisterMultimediaClasses();
        std::mt19937 random(2024);
        m.handler = kAdopt(new KSpeechExceptionHandler(KFileReference()));
        while (m.handler->getCount() < kExceptions) {
            std::string written = randomWord(random, 3, 9);
            written[0] = char(written[0] - 'a' + 'A');
            std::string spoken = randomWord(random, 2, 8) + " " + randomWord(random, 2, 8);
            if (m.handler->add(KString(written.c_str()), KString(spoken.c_str())))
                m.written.push_back(written);
        }
        static const char* const marks[] = { "", "", "", "", ",", ".", "!", "?", ";" };
        std::string text;
        while (int32_t(text.size()) < kTextLength) {
            std::string word = random() % 4 == 0 ? m.written[random() % m.written.size()] : randomWord(random, 1, 8);
            if (random() % 5 == 0)
                word[0] = char(std::toupper(static_cast<unsigned char>(word[0])));
            text += word + marks[random() % 9] + (random() % 12 == 0 ? "\n" : " ");
        }
        text.resize(kTextLength);
        m.text = KString(text.c_str());
        return m;
    }();
    return made;
}

struct Synthesis {
    bool done = false;
    double wallSeconds = 0.0;
    double cpuSeconds = 0.0;
    std::string failure;
};

// Speaks the text into a temporary WAV file with the default voice, driving
// the media manager as the application's idle passes would.
Synthesis synthesise(const KString& text)
{
    Synthesis result;
    KMediaManagerPtr manager(new KMediaManager());
    manager->setSupport(KMediaManager::SpeechSupport, new KSpeechSupport());
    manager->setUp(KMediaManager::SpeechSupport);
    KSpeechSupport* support = KSpeechSupport::current();
    if (!support || support->getVoices().empty()) {
        result.failure = "no speech synthesis is installed";
        manager->closeMediaSupport();
        return result;
    }
    std::string target = "/tmp/taleloom-bench-speech-" + std::to_string(getpid()) + ".wav";
    KSpeechPtr speech(new KSpeech());
    speech->setRenderFile(target);
    auto startWall = std::chrono::steady_clock::now();
    double startCpu = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID);
    speech->speak(support->getDefaultVoice(), text);
    while (speech->isPlaying()) {
        manager->idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    result.cpuSeconds = cpuSeconds(CLOCK_PROCESS_CPUTIME_ID) - startCpu;
    result.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - startWall).count();
    result.done = true;
    speech->unload();
    manager->closeMediaSupport();
    std::remove(target.c_str());
    return result;
}

void BM_RewriteTenThousandCharacters(benchmark::State& state)
{
    Material& m = material();
    static Synthesis synthesis = synthesise(m.text);
    KSpeechRewriter rewriter(m.handler.get());
    KSpeechRewrite rewrite;
    double total = 0.0;
    int64_t rounds = 0;
    for (auto _ : state) {
        double start = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        rewriter.rewrite(m.text, rewrite);
        double seconds = cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - start;
        benchmark::DoNotOptimize(rewrite.spoken.getLength());
        total += seconds;
        ++rounds;
        state.SetIterationTime(seconds);
    }
    double rewriteSeconds = total / double(rounds);
    state.counters["chars"] = double(m.text.getLength());
    state.counters["exceptions"] = double(m.handler->getCount());
    state.counters["spoken_chars"] = double(rewrite.spoken.getLength());
    state.counters["rewrite_ms"] = rewriteSeconds * 1000.0;
    if (!synthesis.done) {
        state.SetLabel(synthesis.failure);
        return;
    }
    state.counters["synth_ms"] = synthesis.wallSeconds * 1000.0;
    state.counters["synth_cpu_ms"] = synthesis.cpuSeconds * 1000.0;
    state.counters["ratio_percent"] = 100.0 * rewriteSeconds / synthesis.cpuSeconds;
}
BENCHMARK(BM_RewriteTenThousandCharacters)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
