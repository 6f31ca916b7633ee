// Opening a story of 5,000 elements: strokes, with a page transition every
// 250 elements as a real story has. Loading the document, drawing the page
// at the end, and both together as opening a project and showing it does.
#include "app/AppClasses.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFileReference.h"
#include "kernel/KKernelClasses.h"
#include "project/StylusProject.h"
#include "tape/ImageTapePage.h"
#include "tape/Stroke.h"
#include "tape/Tape.h"
#include "tape/WipeOut.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

constexpr int32_t kElements = 5000;
constexpr int32_t kPageEvery = 250;
constexpr int16_t kPageWidth = 640;
constexpr int16_t kPageHeight = 480;

struct BenchFolder {
    BenchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "taleloom-project-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        path = pattern;
    }
    ~BenchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::string path;
};

KColor colourOf(int32_t i)
{
    return KColor(uint16_t((i * 7919) & 0xFFFF), uint16_t((i * 104729) & 0xFFFF), uint16_t((i * 1299709) & 0xFFFF));
}

// A stroke of a dozen points wandering over the page, as a child's hand
// draws one.
StrokePtr makeStroke(int32_t i)
{
    StrokePtr stroke(new Stroke());
    stroke->setBrushSize(int16_t(4 + i % 20));
    stroke->setColour(colourOf(i));
    int32_t x = (i * 37) % kPageWidth;
    int32_t y = (i * 53) % kPageHeight;
    for (int32_t p = 0; p < 12; ++p) {
        x = (x + 13 + (i + p) % 17) % kPageWidth;
        y = (y + 7 + (i * p) % 11) % kPageHeight;
        stroke->addPoint(int16_t(x), int16_t(y));
    }
    return stroke;
}

// The story's file, written once.
const KFileReference& storyFile()
{
    static BenchFolder folder;
    static KFileReference* file = [] {
        KErrorHandler::loadKernelErrors();
        kRegisterKernelClasses();
        registerDocumentClasses();
        auto* reference
            = new KFileReference(KPath(KString((folder.path + "/story.TPD").c_str()), KPath::LinuxPlatform));
        StylusProjectPtr project(new StylusProject());
        Tape& tape = *project->getTape();
        tape.setPageSize(KGraphicSize(kPageWidth, kPageHeight));
        for (int32_t i = 0; i < kElements; ++i) {
            if (i > 0 && i % kPageEvery == 0) {
                WipeOutPtr wipe(new WipeOut());
                wipe->setColour(colourOf(i));
                tape.addElement(*wipe);
            } else {
                tape.addElement(*makeStroke(i));
            }
        }
        if (!project->save(*reference))
            std::abort();
        return reference;
    }();
    return *file;
}

StylusProjectPtr loadStory()
{
    StylusProjectPtr project(new StylusProject());
    if (!project->load(storyFile()))
        std::abort();
    return project;
}

void renderEnd(Tape& tape)
{
    ImageTapePagePtr page(new ImageTapePage(tape.getPageSize()));
    tape.setSpriteSystem(*page);
    tape.getPageCache().setEnabled(false);
    tape.setPositionQuietly(tape.getCount());
    tape.rebuildPage();
    tape.clearSpriteSystem();
}

void BM_LoadProject(benchmark::State& state)
{
    storyFile();
    for (auto _ : state) {
        StylusProjectPtr project = loadStory();
        benchmark::DoNotOptimize(project->getTape()->getCount());
    }
    state.SetItemsProcessed(state.iterations() * kElements);
    state.SetBytesProcessed(state.iterations()
                            * int64_t(std::filesystem::file_size(storyFile().getNativeText().c_str())));
}
BENCHMARK(BM_LoadProject)->Unit(benchmark::kMillisecond);

void BM_RenderEnd(benchmark::State& state)
{
    StylusProjectPtr project = loadStory();
    for (auto _ : state)
        renderEnd(*project->getTape());
}
BENCHMARK(BM_RenderEnd)->Unit(benchmark::kMillisecond);

void BM_LoadAndRenderEnd(benchmark::State& state)
{
    storyFile();
    for (auto _ : state) {
        StylusProjectPtr project = loadStory();
        renderEnd(*project->getTape());
    }
}
BENCHMARK(BM_LoadAndRenderEnd)->Unit(benchmark::kMillisecond);

} // namespace
