#include "ctl/Plan.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "linux/pane/RootedPropertyListFiles.h"
#include "linux/units/ModuleRegistry.h"
#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "model/Wire.h"
#include "planning/PreferencesCheck.h"

namespace quorel {

namespace {

using Steady = std::chrono::steady_clock;

constexpr std::chrono::seconds kBusyPatience{10};
constexpr std::chrono::milliseconds kPause{200};

/// As a pane shows them where there is no file.
const Dictionary& defaults() {
    static const Dictionary preferences{
        {preferences::kCheckUpdates, 1},  {preferences::kCheckUpdatesFrequency, 0},
        {preferences::kShowInMenuBar, 1}, {preferences::kEnableNetworkAdministration, 0},
        {preferences::kPrefsVersion, 1},  {preferences::kScheduleArray, Array{}}};
    return preferences;
}

Value withDefaults(const Value& stored) {
    Value result = defaults();
    for (std::size_t i = 0; i < defaults().size(); ++i) {
        const std::string& key = defaults().keyAt(i);
        if (!faultInPreference(key, stored[key])) result = result.with(key, stored[key]);
    }
    Array schedules = result[preferences::kScheduleArray].array();
    std::erase_if(schedules, [](const Value& one) { return !one.isDictionary(); });
    return result.with(preferences::kScheduleArray, std::move(schedules));
}

ActionWords readActions(const std::string& root) {
    ModuleRegistry registry(root);
    registry.scan();
    return ActionWords(registry.modules());
}

}  // namespace

Plan::Plan(const std::string& root) : _actions(readActions(root)) {
    const Value stored = RootedPropertyListFiles(root).dictionaryWithContentsOfFile(preferences::kFile);
    struct stat status {};
    _nothingStored = stored.isAbsent();
    _isUnreadable = _nothingStored && lstat((root + std::string(preferences::kFile)).c_str(), &status) == 0;
    _preferences = withDefaults(stored);
}

const Array& Plan::schedules() const {
    return _preferences[preferences::kScheduleArray].array();
}

DaemonClient::Answer Plan::save(const Value& preferences) const {
    const Value base = _nothingStored ? _preferences.with(wire::kNothingStored, 1) : _preferences;
    const auto deadline = Steady::now() + kBusyPatience;
    DaemonClient daemon;
    while (true) {
        DaemonClient::Answer answer = daemon.save(preferences, base);
        if (answer.error != wire::kBusy || Steady::now() > deadline) return answer;
        std::this_thread::sleep_for(kPause);
    }
}

DaemonClient::Answer Plan::saveSchedules(Array schedules) const {
    return save(_preferences.with(preferences::kScheduleArray, std::move(schedules)));
}

}  // namespace quorel
