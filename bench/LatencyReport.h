#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

// Latencies measured in milliseconds, reported as the counters NAME_mean_ms,
// NAME_p95_ms and NAME_max_ms of the benchmark.
inline void report(benchmark::State& state, const char* name, std::vector<double> values)
{
    if (values.empty())
        return;
    std::sort(values.begin(), values.end());
    double sum = 0;
    for (double v : values)
        sum += v;
    state.counters[std::string(name) + "_mean_ms"] = sum / double(values.size());
    state.counters[std::string(name) + "_p95_ms"] = values[values.size() * 95 / 100];
    state.counters[std::string(name) + "_max_ms"] = values.back();
}
