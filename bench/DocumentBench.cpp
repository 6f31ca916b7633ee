// Saving and loading a document of 100,000 strings, in memory-buffer mode
// and in direct mode, against writing and reading the same number of bytes
// with a plain buffered FILE* in the same run.
#include "kernel/KBag.h"
#include "kernel/KDocument.h"
#include "kernel/KErrorHandler.h"
#include "kernel/KFile.h"
#include "kernel/KFileReference.h"
#include "kernel/KKernelClasses.h"
#include "kernel/KString.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int32_t kStrings = 100000;

// A folder of its own under the temporary folder, removed at exit.
struct BenchFolder {
    BenchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "taleloom-bench-XXXXXX").string();
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

std::string benchFile(const char* name)
{
    static const BenchFolder folder;
    return folder.path + "/" + name;
}

KFileReference referenceTo(const std::string& file)
{
    return KFileReference(KPath(KString(file.c_str()), KPath::LinuxPlatform));
}

// One document for all benchmarks; saved once so that loads have a file.
KDocument& storyDocument()
{
    static KDocument* document = [] {
        KErrorHandler::loadKernelErrors();
        kRegisterKernelClasses();
        auto* made = new KDocument();
        made->setMagic(KDocument::makeMagic("BNCH"));
        auto* lines = new KBag();
        lines->setGrowSize(kStrings);
        char text[64];
        for (int32_t i = 0; i < kStrings; ++i) {
            std::snprintf(text, sizeof text, "Line %06d of the benchmark story", int(i));
            lines->add(*new KString(text));
        }
        made->add("lines", *lines);
        KFileReference reference = referenceTo(benchFile("story.doc"));
        made->setFile(reference);
        if (!made->save())
            std::abort();
        return made;
    }();
    return *document;
}

int64_t documentBytes() { return int64_t(std::filesystem::file_size(benchFile("story.doc"))); }

// save() always collects the file in memory; direct mode is measured on the
// same steps with a file in mode 0, to show why.
void saveDocument(benchmark::State& state, bool memoryBuffer)
{
    KDocument& document = storyDocument();
    for (auto _ : state) {
        bool saved = false;
        if (memoryBuffer) {
            saved = document.save();
        } else {
            KFile target(referenceTo(benchFile("story.doc")));
            saved = target.beginAtomicWrite() && document.saveTo(target) && target.commitAtomicWrite();
        }
        if (!saved)
            state.SkipWithError("save failed");
    }
    state.SetBytesProcessed(state.iterations() * documentBytes());
}

void loadDocument(benchmark::State& state, bool memoryBuffer)
{
    storyDocument();
    for (auto _ : state) {
        KDocument loaded;
        KFileReference reference = referenceTo(benchFile("story.doc"));
        loaded.setFile(reference);
        loaded.setMagic(KDocument::makeMagic("BNCH"));
        loaded.setUseMemoryBuffer(memoryBuffer);
        if (!loaded.load())
            state.SkipWithError("load failed");
    }
    state.SetBytesProcessed(state.iterations() * documentBytes());
}

// The baseline writes as the class stream does, four bytes at a time (or in
// large blocks), and flushes to the device as a save does before it renames.
// `piece` bytes per call: 4 as the scalars go, or large blocks.
void plainWrite(benchmark::State& state, bool sync, int64_t piece)
{
    storyDocument();
    int64_t size = documentBytes();
    std::string file = benchFile("plain.bin");
    std::vector<char> block(size_t(piece), 'a');
    for (auto _ : state) {
        FILE* out = std::fopen(file.c_str(), "wb");
        for (int64_t done = 0; done < size; done += piece)
            std::fwrite(block.data(), 1, size_t(std::min<int64_t>(piece, size - done)), out);
        if (sync) {
            std::fflush(out);
            fsync(fileno(out));
        }
        std::fclose(out);
    }
    state.SetBytesProcessed(state.iterations() * size);
}

void plainRead(benchmark::State& state, int64_t piece)
{
    storyDocument();
    std::string file = benchFile("story.doc");
    std::vector<char> block(static_cast<size_t>(piece));
    for (auto _ : state) {
        FILE* in = std::fopen(file.c_str(), "rb");
        int64_t sum = 0;
        while (std::fread(block.data(), 1, block.size(), in) == block.size())
            sum += block[0];
        std::fclose(in);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * documentBytes());
}

void BM_SaveMemoryBuffer(benchmark::State& state) { saveDocument(state, true); }
void BM_SaveDirect(benchmark::State& state) { saveDocument(state, false); }
void BM_LoadMemoryBuffer(benchmark::State& state) { loadDocument(state, true); }
void BM_LoadDirect(benchmark::State& state) { loadDocument(state, false); }
void BM_PlainFileWrite(benchmark::State& state) { plainWrite(state, false, 4); }
void BM_PlainFileWriteAndSync(benchmark::State& state) { plainWrite(state, true, 4); }
void BM_PlainFileWriteBlocks(benchmark::State& state) { plainWrite(state, true, 65536); }
void BM_PlainFileRead(benchmark::State& state) { plainRead(state, 4); }
void BM_PlainFileReadBlocks(benchmark::State& state) { plainRead(state, 65536); }

} // namespace

BENCHMARK(BM_SaveMemoryBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveDirect)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFileWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFileWriteAndSync)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFileWriteBlocks)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadMemoryBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadDirect)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFileRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainFileReadBlocks)->Unit(benchmark::kMillisecond);
