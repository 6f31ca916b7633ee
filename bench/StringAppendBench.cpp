// Appending many short pieces: KString reallocates exactly on every append,
// so the loop is quadratic; a growing buffer is linear.

#include "kernel/KString.h"
#include "kernel/KStringBuilder.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr const char* kPiece = "word "; // 5 bytes

void BM_KStringAppend(benchmark::State& state)
{
    const auto pieces = int32_t(state.range(0));
    for (auto _ : state) {
        KString text;
        for (int32_t i = 0; i < pieces; ++i)
            text += kPiece;
        benchmark::DoNotOptimize(text.getText());
    }
    state.SetItemsProcessed(state.iterations() * pieces);
}

void BM_StdStringThenKString(benchmark::State& state)
{
    const auto pieces = int32_t(state.range(0));
    for (auto _ : state) {
        std::string buffer;
        for (int32_t i = 0; i < pieces; ++i)
            buffer += kPiece;
        KString text;
        text.setText(buffer.data(), int32_t(buffer.size()));
        benchmark::DoNotOptimize(text.getText());
    }
    state.SetItemsProcessed(state.iterations() * pieces);
}

void BM_KStringBuilder(benchmark::State& state)
{
    const auto pieces = int32_t(state.range(0));
    for (auto _ : state) {
        KStringBuilder builder;
        for (int32_t i = 0; i < pieces; ++i)
            builder += kPiece;
        KString text = builder.toString();
        benchmark::DoNotOptimize(text.getText());
    }
    state.SetItemsProcessed(state.iterations() * pieces);
}

} // namespace

BENCHMARK(BM_KStringAppend)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StdStringThenKString)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KStringBuilder)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
