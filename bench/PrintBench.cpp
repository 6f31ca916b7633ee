// A book PDF of the bundled story against its bound measured in the same
// run: 1.5 times its pictures rendered one by one into files, as the render
// command makes them (drawn, then compressed into a PNG: a PDF compresses
// its pictures too). Reported as the counter "x_bound" for each count of
// pictures a sheet; at most 1 keeps the bound.

#include "app/AppClasses.h"
#include "app/SceneTapePage.h"
#include "app/actors/ActorLoading.h"
#include "graphics/KImage.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KTextCodec.h"
#include "project/BookPrinter.h"
#include "project/StylusProject.h"
#include "tape/Tape.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

struct Story {
    StylusProjectPtr project;
    KPtr<SceneTapePage> page;
    std::string pdf;
    std::string png;
};

Story& story()
{
    static Story s;
    if (s.project)
        return s;
    KErrorHandler::loadKernelErrors();
    kRegisterKernelClasses();
    registerDocumentClasses();
    s.project = new StylusProject();
    fs::path sample = fs::path(TALELOOM_SOURCE_DIR) / "data/samples/Sample/Sample.TPD";
    if (!s.project->load(KFileReference(KPath(KTextCodec::fromUtf8(sample.string()), KPath::kHostPlatform))))
        std::abort();
    Tape& tape = *s.project->getTape();
    if (KDirectory* actors = s.project->getActorsDirectory())
        loadTapeActors(tape, *actors);
    s.page = new SceneTapePage(tape.getPageSize());
    tape.setSpriteSystem(*s.page);
    tape.getPageCache().setEnabled(false);
    char pattern[] = "/tmp/taleloom-print-bench-XXXXXX";
    std::string folder = ::mkdtemp(pattern);
    s.pdf = folder + "/book.pdf";
    s.png = folder + "/page.png";
    return s;
}

bool drawPicture(Story& s, int32_t position, KImage& picture)
{
    Tape& tape = *s.project->getTape();
    tape.setPositionQuietly(position);
    tape.rebuildPage();
    s.page->composeInto(picture);
    return picture.hasImage();
}

double bookSeconds(Story& s, int32_t perSheet)
{
    Clock::time_point start = Clock::now();
    BookPrinter::Options options;
    options.perSheet = perSheet;
    options.withoutColourBackgrounds = false;
    BookPrinter book(
        options, BookPrinter::picturePositions(*s.project->getTape()),
        [&s](int32_t position, KImage& picture) { return drawPicture(s, position, picture); },
        KString("Created with TaleLoom"));
    std::string reason;
    if (!book.printToPdf(s.pdf, 595.276, 841.89, reason))
        std::abort();
    return secondsSince(start);
}

double picturesSeconds(Story& s)
{
    Clock::time_point start = Clock::now();
    for (int32_t position : BookPrinter::picturePositions(*s.project->getTape())) {
        KImagePtr picture(new KImage());
        if (!drawPicture(s, position, *picture) || !picture->writeToPath(KString(s.png.c_str())))
            std::abort();
    }
    return secondsSince(start);
}

void BM_BookPdf(benchmark::State& state)
{
    Story& s = story();
    int32_t perSheet = int32_t(state.range(0));
    std::vector<double> ratios;
    double book = 0.0, pictures = 0.0;
    for (auto _ : state) {
        book = bookSeconds(s, perSheet);
        pictures = picturesSeconds(s);
        ratios.push_back(book / pictures);
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["book_ms"] = book * 1000.0;
    state.counters["pictures_ms"] = pictures * 1000.0;
    state.counters["x_bound"] = ratios[ratios.size() / 2] / 1.5;
}
BENCHMARK(BM_BookPdf)->Arg(1)->Arg(4)->Arg(9)->Iterations(9)->Unit(benchmark::kMillisecond);

} // namespace
