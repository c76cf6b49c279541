#include "ctl/Plan.h"

#include <sys/stat.h>

#include <utility>

#include "ctl/DaemonClient.h"
#include "ctl/Failures.h"
#include "linux/pane/RootedPropertyListFiles.h"
#include "linux/units/ModuleRegistry.h"
#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "model/Wire.h"
#include "planning/PreferencesCheck.h"
#include "planning/ScheduleWords.h"
#include "words/Language.h"

namespace quorel {

namespace {

/// As a pane shows them where there is no file.
const Dictionary& defaults() {
    static const Dictionary preferences{
        {preferences::kCheckUpdates, 1},  {preferences::kCheckUpdatesFrequency, 0},
        {preferences::kShowInMenuBar, 1}, {preferences::kEnableNetworkAdministration, 0},
        {preferences::kPrefsVersion, 1},  {preferences::kScheduleArray, Array{}}};
    return preferences;
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
    _preferences = _nothingStored ? Value(defaults()) : storablePreferences(stored);
}

const Array& Plan::schedules() const {
    return _preferences[preferences::kScheduleArray].array();
}

ExitStatus Plan::save(const Value& preferences) const {
    if (_isUnreadable)
        complain(filled(translated("The plan in place cannot be read. What is stored now takes its place; it stays as "
                                   "\"{1}.unreadable\"."),
                        {preferences::kFile}));
    const Value base = _nothingStored ? _preferences.with(wire::kNothingStored, 1) : _preferences;
    const DaemonClient::Answer answer = DaemonClient().save(preferences, base);
    if (answer.failure != DaemonClient::Failure::kNone) return fail(answer);
    tellJoined(answer.value);
    return ExitStatus::kDone;
}

ExitStatus Plan::saveSchedules(Array schedules) const {
    return save(_preferences.with(preferences::kScheduleArray, std::move(schedules)));
}

void Plan::tellJoined(const Value& joined) const {
    for (const Value& pair : joined[wire::keys::kBoth].array()) {
        const Array& lines = pair.array();
        if (lines.size() != 2) continue;
        complain(filled(translated("Somebody else has changed the same schedule meanwhile; both stay:\n  {1}\n  {2}"),
                        {lineOf(lines[0], _actions), lineOf(lines[1], _actions)}));
    }
}

}  // namespace quorel
