#include <benchmark/benchmark.h>

#include "bench/Content.h"
#include "tests/scheduler/VirtualWorld.h"

namespace quorel::bench {
namespace {

/// All that a saved list brings about: reading it, and when what comes next and which alarms are due.
void plan(benchmark::State& state) {
    Array list;
    for (int i = 0; i < state.range(0); ++i) {
        const Content content = Content::ofNumber(i);
        Dictionary schedule{{schedule_keys::kIsEnabled, content.enabled ? 1 : 0},
                            {schedule_keys::kActionType, content.type},
                            {schedule_keys::kActionHour, content.hour},
                            {schedule_keys::kActionMinute, std::to_string(content.minute)},
                            {schedule_keys::kActionParameters, Dictionary{{"n", content.parameter}}}};
        for (unsigned day = 0; day < schedule_keys::kActiveOnDays.size(); ++day)
            schedule.set(schedule_keys::kActiveOnDays[day], (content.days >> day & 1) != 0);
        list.push_back(schedule);
    }
    VirtualWorld world("Europe/Paris");
    world.begin(12, 0, 0, {});
    for (auto _ : state) world.saveList(list);
}

BENCHMARK(plan)->Arg(10)->Arg(1000)->Arg(2500);

}  // namespace
}  // namespace quorel::bench

BENCHMARK_MAIN();
