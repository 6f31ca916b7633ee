// Converting an old document against bounds measured in the same run: an
// old tape of 5,000 strokes against loading the document it becomes (at
// most 2x), and the copying of its media against a plain copy of the same
// bytes (at most 1.2x). Reported as "x_bound"; at most 1 keeps the bound.

#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"
#include "project/legacy/OldDocument.h"
#include "project/legacy/ZFile.h"
#include "tests/project/OldDocumentWriter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int32_t kStrokes = 5000;
constexpr int32_t kMedia = 24;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

struct Fixture {
    fs::path root;
    ~Fixture()
    {
        std::error_code ignored;
        if (!root.empty())
            fs::remove_all(root, ignored);
    }
};

void writeBytes(const fs::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

// An old tape of strokes of a dozen points each, and one of sounds whose
// files, a megabyte each, lie beside it.
Fixture& fixture()
{
    static Fixture f;
    if (!f.root.empty())
        return f;
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
    StylusProject::setRetryDelay(0);
    char pattern[] = "/tmp/taleloom-convert-bench-XXXXXX";
    f.root = ::mkdtemp(pattern);
    fs::create_directories(f.root / "old");
    OldDocumentWriter strokes;
    strokes.beginTape(kStrokes);
    for (int32_t i = 0; i < kStrokes; ++i) {
        std::vector<std::pair<int16_t, int16_t>> points;
        for (int16_t p = 0; p < 12; ++p)
            points.push_back({ int16_t((i * 7 + p * 5) % 640), int16_t((i * 3 + p * 11) % 480) });
        strokes.stroke(uint16_t(i * 97), uint16_t(i * 31), uint16_t(i * 13), int16_t(4 + i % 20), points);
    }
    strokes.endTape(0, 30, false, false);
    writeBytes(f.root / "old/strokes.STT", strokes.bytes);

    OldDocumentWriter sounds;
    sounds.beginTape(kMedia);
    std::vector<uint8_t> megabyte(1 << 20, 0x5A);
    for (int32_t i = 0; i < kMedia; ++i) {
        std::string name = "sound" + std::to_string(i) + ".wav";
        writeBytes(f.root / "old" / name, megabyte);
        sounds.sound("Disk:Sounds:" + name);
    }
    sounds.endTape(0, 30, false, false);
    writeBytes(f.root / "old/sounds.STT", sounds.bytes);
    return f;
}

bool convertTo(Fixture& f, const std::string& old, const std::string& name, OldDocumentReport& report)
{
    fs::remove_all(f.root / name);
    OldDocument::Request request;
    request.oldPath = (f.root / "old" / old).string();
    request.platform = 1;
    request.folder = f.root.string();
    request.name = name;
    return OldDocument::convert(request, report);
}

void BM_ConvertStrokes(benchmark::State& state)
{
    Fixture& f = fixture();
    std::vector<double> ratios;
    double converted = 0.0, loaded = 0.0;
    for (auto _ : state) {
        OldDocumentReport report;
        Clock::time_point start = Clock::now();
        if (!convertTo(f, "strokes.STT", "Strokes", report))
            std::abort();
        converted = secondsSince(start);
        start = Clock::now();
        StylusProjectPtr project(new StylusProject());
        if (!project->load(KFileReference(KPath(KTextCodec::fromUtf8(report.document), KPath::kHostPlatform))))
            std::abort();
        loaded = secondsSince(start);
        ratios.push_back(converted / (2.0 * loaded));
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["converted_ms"] = converted * 1000.0;
    state.counters["loaded_ms"] = loaded * 1000.0;
    state.counters["x_bound"] = ratios[ratios.size() / 2];
}
BENCHMARK(BM_ConvertStrokes)->Iterations(5)->Unit(benchmark::kMillisecond);

// The copying of a converted tape's media: the old tape read and converted
// first, then the copies timed against a plain copy of the same files.
void BM_ConvertMedia(benchmark::State& state)
{
    Fixture& f = fixture();
    std::vector<uint8_t> bytes;
    if (!ZFile::readFile((f.root / "old/sounds.STT").string(), bytes))
        std::abort();
    std::vector<double> ratios;
    double copied = 0.0, plain = 0.0;
    for (auto _ : state) {
        fs::remove_all(f.root / "Sounds");
        fs::create_directories(f.root / "Sounds/Media");
        OldDocumentReport report;
        ZConversion conversion((f.root / "old").string(), (f.root / "Sounds/Media").string(), 1, report);
        if (!OldDocument::convertInMemory(bytes, conversion))
            std::abort();
        std::string reason;
        Clock::time_point start = Clock::now();
        if (!conversion.copyMedia(reason) || report.mediaCopied != kMedia)
            std::abort();
        copied = secondsSince(start);
        fs::remove_all(f.root / "plain");
        fs::create_directories(f.root / "plain");
        start = Clock::now();
        for (int32_t i = 0; i < kMedia; ++i) {
            std::string name = "sound" + std::to_string(i) + ".wav";
            fs::copy_file(f.root / "old" / name, f.root / "plain" / name);
        }
        plain = secondsSince(start);
        ratios.push_back(copied / (1.2 * plain));
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["copied_ms"] = copied * 1000.0;
    state.counters["plain_copy_ms"] = plain * 1000.0;
    state.counters["x_bound"] = ratios[ratios.size() / 2];
}
BENCHMARK(BM_ConvertMedia)->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace
