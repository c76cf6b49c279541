#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

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

#define QUOREL_BENCHMARK(name, ...)                                                                  \
    BENCHMARK_TEMPLATE(name, OurSchedules)->Arg(10)->Arg(1000)->Arg(2500)->Arg(100'000) __VA_ARGS__; \
    BENCHMARK_TEMPLATE(name, FoundationSchedules)->Arg(10)->Arg(1000)->Arg(2500)->Arg(100'000) __VA_ARGS__

QUOREL_BENCHMARK(memory, ->Iterations(1));
QUOREL_BENCHMARK(handOver);
QUOREL_BENCHMARK(sortInfos, ->UseManualTime());
QUOREL_BENCHMARK(sortFlag, ->UseManualTime());
QUOREL_BENCHMARK(toggle);
QUOREL_BENCHMARK(count);
QUOREL_BENCHMARK(cellValues);

/// Both sides come to the same results, or their times say nothing.
bool agree() {
    constexpr int kCount = 1000;
    OurSchedules ours(kCount);
    FoundationSchedules foundation(kCount);
    const auto results = [](auto& schedules) {
        std::vector<std::string> all{std::to_string(schedules.handOver()),
                                     std::to_string(schedules.count("com.quorel.plugin.Sleep"))};
        const auto add = [&] { all.push_back(schedules.summaries(0, kCount)); };
        add();
        for (const char* column : {kInfosColumn, kFlagColumn, kInfosColumn}) {
            schedules.sort(column);
            add();
        }
        schedules.toggle(0, kScreenful, kFlagColumn);
        schedules.sort(kFlagColumn);
        add();
        return all;
    };
    return results(ours) == results(foundation);
}

}  // namespace
}  // namespace quorel::bench

int main(int argumentCount, char** arguments) {
    if (!quorel::bench::agree()) {
        std::fputs("The two sides disagree about what the Schedules are.\n", stderr);
        return 1;
    }
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
