#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

#include "bench/Content.h"
#include "bench/FoundationSchedules.h"
#include "bench/OurSchedules.h"

namespace quorel::bench {
namespace {

constexpr std::size_t kScreenful = 20;

/// Built once for each size.
template <class Schedules>
Schedules& schedulesOf(const benchmark::State& state) {
    static std::map<std::int64_t, Schedules> all;
    return all.try_emplace(state.range(0), static_cast<int>(state.range(0))).first->second;
}

template <class Schedules>
void handOver(benchmark::State& state) {
    auto& schedules = schedulesOf<Schedules>(state);
    for (auto _ : state) benchmark::DoNotOptimize(schedules.handOver());
}

/// Each time from the scattered order of the file.
template <class Schedules>
void sortColumn(benchmark::State& state, const char* column) {
    auto& schedules = schedulesOf<Schedules>(state);
    for (auto _ : state) {
        schedules.handOver();
        const auto start = std::chrono::steady_clock::now();
        schedules.sort(column);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    schedules.handOver();
}

template <class Schedules>
void sortInfos(benchmark::State& state) {
    sortColumn<Schedules>(state, kInfosColumn);
}

template <class Schedules>
void sortFlag(benchmark::State& state) {
    sortColumn<Schedules>(state, kFlagColumn);
}

template <class Schedules>
void toggle(benchmark::State& state) {
    auto& schedules = schedulesOf<Schedules>(state);
    std::size_t row = 0;
    for (auto _ : state) {
        schedules.toggle(row, kScreenful, kFlagColumn);
        row += kScreenful;
    }
    schedules.handOver();
}

template <class Schedules>
void count(benchmark::State& state) {
    auto& schedules = schedulesOf<Schedules>(state);
    for (auto _ : state) benchmark::DoNotOptimize(schedules.count("com.quorel.plugin.Sleep"));
}

template <class Schedules>
void cellValues(benchmark::State& state) {
    auto& schedules = schedulesOf<Schedules>(state);
    std::size_t row = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(schedules.summaries(row, kScreenful));
        row += kScreenful;
    }
}

template <class Schedules>
void memory(benchmark::State& state) {
    const auto& schedules = schedulesOf<Schedules>(state);
    for (auto _ : state) benchmark::DoNotOptimize(schedules.bytesPerSchedule());
    state.counters["bytes_per_schedule"] = schedules.bytesPerSchedule();
}

#define QUOREL_BENCHMARK(name, ...)                                                       \
    BENCHMARK_TEMPLATE(name, OurSchedules)->Arg(10)->Arg(1000)->Arg(100'000) __VA_ARGS__; \
    BENCHMARK_TEMPLATE(name, FoundationSchedules)->Arg(10)->Arg(1000)->Arg(100'000) __VA_ARGS__

QUOREL_BENCHMARK(memory, ->Iterations(1));
QUOREL_BENCHMARK(handOver);
QUOREL_BENCHMARK(sortInfos, ->UseManualTime());
QUOREL_BENCHMARK(sortFlag, ->UseManualTime());
QUOREL_BENCHMARK(toggle);
QUOREL_BENCHMARK(count);
QUOREL_BENCHMARK(cellValues);

}  // namespace
}  // namespace quorel::bench

BENCHMARK_MAIN();
