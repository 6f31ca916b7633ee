// The bundled story exported as an EPUB read-along book against its bound
// measured in the same run: 1.5 times the work the book cannot do without,
// each page rendered once into a picture, each text synthesised once by
// the voice into a file, and the book's sound encoded as MP3. Reported as
// the counter "x_bound"; at most 1 keeps the bound.

#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KTextCodec.h"
#include "kmultimedia/KAudioCodec.h"
#include "project/BookPrinter.h"
#include "project/StylusProject.h"
#include "tape/StylusText.h"
#include "tape/Tape.h"
#include "tools/taleloom-tool/ExportEpubCommand.h"
#include "tools/taleloom-tool/RenderCommand.h"
#include "tools/taleloom-tool/TaleloomTool.h"
#include "tools/taleloom-tool/ToolProject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

struct Sample {
    std::string story;
    std::string folder;
    std::vector<int32_t> positions;
    std::vector<std::string> texts;
};

Sample& sample()
{
    static Sample s;
    if (!s.story.empty())
        return s;
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
    s.story = (fs::path(TALELOOM_SOURCE_DIR) / "data/samples/Sample/Sample.TPD").string();
    char pattern[] = "/tmp/taleloom-epub-bench-XXXXXX";
    s.folder = ::mkdtemp(pattern);
    StylusProjectPtr project(new StylusProject());
    std::string reason;
    std::vector<std::string> warnings;
    if (!loadToolProject(s.story, *project, reason, warnings))
        std::abort();
    Tape& tape = *project->getTape();
    s.positions = BookPrinter::picturePositions(tape);
    for (int32_t i = 0; i < tape.getCount(); ++i) {
        if (auto* text = dynamic_cast<StylusText*>(tape.getAt(i)))
            s.texts.push_back(KTextCodec::toUtf8(text->getPlainText()));
    }
    return s;
}

double exportSeconds(Sample& s, EpubExportReport& report)
{
    Clock::time_point start = Clock::now();
    std::string reason;
    std::vector<std::string> warnings;
    if (!exportEpub(s.story, s.folder + "/book.epub", report, reason, warnings))
        std::abort();
    return secondsSince(start);
}

double boundSeconds(Sample& s, int32_t soundMs)
{
    Clock::time_point start = Clock::now();
    std::string reason;
    std::vector<std::string> warnings;
    for (int32_t position : s.positions) {
        if (!renderProjectPage(s.story, position, s.folder + "/page.png", reason, warnings, 0, nullptr, true))
            std::abort();
    }
    std::ostringstream out, err;
    for (const std::string& text : s.texts) {
        if (runTaleloomTool({ "speak", text, "-o", s.folder + "/speech.wav" }, out, err) != 0)
            std::abort();
    }
    KAudioBuffer silence;
    silence.samples.assign(size_t(int64_t(soundMs) * silence.rate / 1000) * size_t(silence.channels), 0);
    if (!knsEncodeMp3File(silence, s.folder + "/sound.mp3", reason))
        std::abort();
    return secondsSince(start);
}

void BM_ExportEpub(benchmark::State& state)
{
    Sample& s = sample();
    std::vector<double> ratios;
    double book = 0.0, bound = 0.0;
    for (auto _ : state) {
        EpubExportReport report;
        book = exportSeconds(s, report);
        bound = boundSeconds(s, report.durationMs);
        ratios.push_back(book / bound);
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["book_ms"] = book * 1000.0;
    state.counters["bound_work_ms"] = bound * 1000.0;
    state.counters["x_bound"] = ratios[ratios.size() / 2] / 1.5;
}
BENCHMARK(BM_ExportEpub)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
