#include "daemon/modules/ModuleInfo.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "model/ModuleKeys.h"
#include "model/Schedule.h"
#include "scheduler/Outcome.h"

namespace quorel {

namespace {

namespace keys = module_keys;

constexpr std::size_t kMostNames = 32;
constexpr std::size_t kMostWrites = 16;
constexpr std::size_t kLongestName = 255;

/// The system's service manager gives "$" and "%" in a path a meaning of their own.
bool isFileName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName && name.front() != '.' &&
           std::ranges::none_of(name, [](char c) {
               return static_cast<unsigned char>(c) < 0x20 || std::string_view("/$%\x7f").find(c) != std::string::npos;
           });
}

/// Written out, and not the whole system.
bool isFolderPath(const std::string& path) {
    const std::filesystem::path read(path);
    return path.size() > 1 && path.front() == '/' && path.back() != '/' && path == read.lexically_normal() &&
           std::ranges::all_of(read.relative_path(), [](const auto& name) { return isFileName(name.native()); });
}

bool doesTheDaemonItself(const std::string& action) {
    return action == schedule_keys::kSleepType || action == schedule_keys::kWakeUpType ||
           action == schedule_keys::kShutDownType;
}

/// False where something is there that has no meaning: what a sandbox is to let through is not guessed.
bool readSandbox(ModuleInfo& info, const Value& dictionary) {
    const Value& needs = dictionary[keys::kNeeds];
    const Value& writes = dictionary[keys::kWrites];
    if ((needs.isPresent() && !needs.isArray()) || (writes.isPresent() && !writes.isArray())) return false;
    for (const Value& need : needs.array()) {
        if (need.text() != keys::kNetwork && need.text() != keys::kRoot) return false;
        (need.text() == keys::kNetwork ? info.mayUseNetwork : info.isRoot) = true;
    }
    for (const Value& folder : writes.array()) {
        if (!isFolderPath(folder.text()) || info.writes.size() == kMostWrites) return false;
        info.writes.push_back(folder.text());
    }
    return true;
}

Seconds secondsIn(const Value& value, Seconds usual, Seconds least) {
    return value.isAbsent() ? usual : std::clamp<Seconds>(value.intValue(), least, keys::kMostTimeLimit);
}

}  // namespace

ModuleInfo ModuleInfo::from(const std::string& bundle, const Value& dictionary) {
    ModuleInfo info;
    info.bundle = bundle;
    info.action = dictionary[keys::kActionType].text();
    const Dictionary& names = dictionary[keys::kNames].dictionary();
    for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i)
        if (names.valueAt(i).isText()) info.names.set(plainText(names.keyAt(i)), plainText(names.valueAt(i).text()));
    if (info.action.empty()) {
        info.fault = module_fault::kNoWords;
        return info;
    }
    if (doesTheDaemonItself(info.action)) return info;

    info.program = dictionary[keys::kProgram].text();
    if (info.program.empty()) {
        info.fault = module_fault::kNoProgram;
        return info;
    }
    const std::string& runsAs = dictionary[keys::kRunsAs].text();
    info.isSystem = runsAs == keys::kSystem;
    info.limit = secondsIn(dictionary[keys::kTimeLimit], keys::kDefaultTimeLimit, 1);
    info.makeUp = secondsIn(dictionary[keys::kMakeUp], 0, 0);
    const bool isKind = info.isSystem || runsAs == keys::kUser;
    if (!isKind || !isFileName(info.program) || !isFileName(bundle) ||
        (info.isSystem && !readSandbox(info, dictionary)))
        info.fault = module_fault::kMalformed;
    return info;
}

Value ModuleInfo::value() const {
    Dictionary value{{"Bundle", plainText(bundle)}};
    if (!action.empty()) value.set("Action", plainText(action));
    if (names.size() > 0) value.set("Names", names);
    if (!fault.empty()) value.set("Fault", fault);
    if (program.empty() || fault == module_fault::kMalformed) return value;
    value.set("Program", program);
    value.set("RunsAs", isSystem ? keys::kSystem : keys::kUser);
    value.set("TimeLimit", limit);
    value.set("MakeUp", makeUp);
    Array needs;
    if (mayUseNetwork) needs.emplace_back(keys::kNetwork);
    if (isRoot) needs.emplace_back(keys::kRoot);
    if (!needs.empty()) value.set("Needs", std::move(needs));
    if (!writes.empty()) value.set("Writes", Array(writes.begin(), writes.end()));
    return value;
}

}  // namespace quorel
