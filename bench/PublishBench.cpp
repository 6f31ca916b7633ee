// Publishing a story against its bound measured in the same run: a plain
// copy of the same bytes (media, actors, player) plus one save of the
// story. Reported as the counter "x_bound"; wall-clock time, since the work
// is the disk's as much as the processor's.

#include "app/AppClasses.h"
#include "app/Publication.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KTextCodec.h"
#include "project/StylusProject.h"

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

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

struct Fixture {
    fs::path root;
    std::string story;
    std::string player;
    ~Fixture()
    {
        std::error_code ignored;
        if (!root.empty())
            fs::remove_all(root, ignored);
    }
};

// The bundled story with a large recording beside its chime, and a player
// of a realistic size.
Fixture& fixture()
{
    static Fixture f;
    if (!f.root.empty())
        return f;
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
    char pattern[] = "/tmp/taleloom-publish-bench-XXXXXX";
    f.root = ::mkdtemp(pattern);
    fs::copy(fs::path(TALELOOM_SOURCE_DIR) / "data/samples/Sample", f.root / "Sample", fs::copy_options::recursive);
    f.story = (f.root / "Sample/Sample.TPD").string();
    f.player = (f.root / "taleloom-player").string();
    std::ofstream player(f.player, std::ios::binary);
    std::string block(1 << 20, 'p');
    for (int i = 0; i < 40; ++i)
        player << block;
    return f;
}

StylusProjectPtr loadStory(const Fixture& f)
{
    StylusProjectPtr project(new StylusProject());
    if (!project->load(KFileReference(KPath(KTextCodec::fromUtf8(f.story), KPath::kHostPlatform))))
        std::abort();
    return project;
}

double plainCopySeconds(const Fixture& f, StylusProject& project)
{
    fs::path target = f.root / "plain";
    fs::remove_all(target);
    Clock::time_point start = Clock::now();
    fs::create_directories(target);
    fs::copy(f.root / "Sample/Media", target / "Media", fs::copy_options::recursive);
    fs::copy(f.root / "Sample/Actors", target / "Actors", fs::copy_options::recursive);
    fs::copy_file(f.player, target / "player");
    KFileReference file(KPath(KTextCodec::fromUtf8((target / "data.TPD").string()), KPath::kHostPlatform));
    project.save(file);
    return secondsSince(start);
}

void BM_PublishSample(benchmark::State& state)
{
    Fixture& f = fixture();
    std::vector<double> ratios;
    double published = 0.0;
    for (auto _ : state) {
        StylusProjectPtr project = loadStory(f);
        fs::remove_all(f.root / "out");
        fs::create_directories(f.root / "out");
        PublishRequest request;
        request.folder = (f.root / "out").string();
        request.name = "Bedtime";
        request.playerPath = f.player;
        PublishReport report;
        Clock::time_point start = Clock::now();
        if (!publishStory(*project, request, report))
            std::abort();
        published = secondsSince(start);
        StylusProjectPtr other = loadStory(f);
        double bound = plainCopySeconds(f, *other);
        ratios.push_back(published / bound);
    }
    // The median: a single copy can meet a cold disk cache either way.
    std::sort(ratios.begin(), ratios.end());
    state.counters["published_ms"] = published * 1000.0;
    state.counters["x_bound"] = ratios[ratios.size() / 2];
}
BENCHMARK(BM_PublishSample)->Iterations(9)->Unit(benchmark::kMillisecond);

} // namespace
