#include "linux/TransientUnit.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

#include "linux/Logind.h"

namespace quorel {

namespace {

constexpr const char* kName = "org.freedesktop.systemd1";
constexpr const char* kPath = "/org/freedesktop/systemd1";
constexpr const char* kManager = "org.freedesktop.systemd1.Manager";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr std::chrono::seconds kPatience{30};

constexpr std::uint64_t kMostMemory = std::uint64_t{512} * 1024 * 1024;
constexpr std::uint64_t kMostTasks = 64;
// A line is at most 48 KiB for systemd, and most are short.
constexpr unsigned kMostLines = 512;

std::string pathOf(const std::string& name) {
    char* path = nullptr;
    if (sd_bus_path_encode("/org/freedesktop/systemd1/unit", name.c_str(), &path) < 0) return {};
    const std::unique_ptr<char, decltype(&std::free)> owned(path, std::free);
    return path;
}

template <class... Arguments>
void add(sd_bus_message* call, const char* name, const char* type, Arguments... arguments) {
    sd_bus_message_append(call, "(sv)", name, type, arguments...);
}

void addTexts(sd_bus_message* call, const char* name, const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    sd_bus_message_open_container(call, 'r', "sv");
    sd_bus_message_append(call, "s", name);
    sd_bus_message_open_container(call, 'v', "as");
    sd_bus_message_open_container(call, 'a', "s");
    for (const std::string& text : texts) sd_bus_message_append(call, "s", text.c_str());
    for (int level = 0; level < 3; ++level) sd_bus_message_close_container(call);
}

void addInput(sd_bus_message* call, const std::string& input) {
    add(call, "StandardInput", "s", "data");
    sd_bus_message_open_container(call, 'r', "sv");
    sd_bus_message_append(call, "s", "StandardInputData");
    sd_bus_message_open_container(call, 'v', "ay");
    sd_bus_message_append_array(call, 'y', input.data(), input.size());
    for (int level = 0; level < 2; ++level) sd_bus_message_close_container(call);
}

void addProperties(sd_bus_message* call, const UnitProgram& program) {
    const char* path = program.path.c_str();
    const auto limit = static_cast<std::uint64_t>(std::chrono::microseconds(program.limit).count());
    add(call, "Description", "s", program.description.c_str());
    add(call, "ExecStart", "a(sasb)", 1, path, 1, path, 0);
    add(call, "Type", "s", "exec");
    // It stays when it has ended, until it has been asked how.
    add(call, "RemainAfterExit", "b", 1);
    add(call, "RuntimeMaxUSec", "t", limit);
    addInput(call, program.input);
    std::vector<std::string> environment;
    for (const auto& [key, value] : program.environment) environment.push_back(key + "=" + value);
    addTexts(call, "Environment", environment);
    add(call, "StandardOutput", "s", "journal");
    add(call, "StandardError", "s", "journal");
    add(call, "LogRateLimitIntervalUSec", "t", limit);
    add(call, "LogRateLimitBurst", "u", kMostLines);

    if (!program.isRoot) {
        add(call, "DynamicUser", "b", 1);
        add(call, "CapabilityBoundingSet", "t", std::uint64_t{0});
    }
    for (const char* restriction : {"NoNewPrivileges", "PrivateDevices", "PrivateTmp", "ProtectControlGroups",
                                    "ProtectKernelTunables", "ProtectKernelModules", "RestrictSUIDSGID"})
        add(call, restriction, "b", 1);
    add(call, "ProtectSystem", "s", "strict");
    add(call, "ProtectHome", "s", "yes");
    add(call, "PrivateNetwork", "b", program.mayUseNetwork ? 0 : 1);
    addTexts(call, "ReadWritePaths", program.writableFolders);
    add(call, "MemoryMax", "t", kMostMemory);
    add(call, "TasksMax", "t", kMostTasks);
}

}  // namespace

TransientUnits::Run& TransientUnits::begin(const std::string& name, Ended ended) {
    const auto call = [this](const char* method, const char* argument) {
        const BusMessagePointer message = newCall(_bus, kName, kPath, kManager, method);
        if (argument) sd_bus_message_append(message.get(), "s", argument);
        return callAsync(_bus, message.get(), kPatience, [](sd_bus_message*) {});
    };
    if (!_subscription) _subscription = call("Subscribe", nullptr);  // the manager tells of units only when asked to
    Run& run = _runs[name] = Run{std::move(ended)};
    run.path = pathOf(name);
    run.signals = watchSignals(_bus,
                               std::string("type='signal',sender='") + kName + "',path='" + run.path + "',interface='" +
                                   kProperties + "',member='PropertiesChanged'",
                               [this, name](sd_bus_message*) { look(name); });
    return run;
}

void TransientUnits::start(const std::string& name, const UnitProgram& program, Ended ended) {
    Run& run = begin(name, std::move(ended));
    const BusMessagePointer message = newCall(_bus, kName, kPath, kManager, "StartTransientUnit");
    sd_bus_message* call = message.get();
    sd_bus_message_append(call, "ss", name.c_str(), "fail");
    sd_bus_message_open_container(call, 'a', "(sv)");
    addProperties(call, program);
    sd_bus_message_close_container(call);
    sd_bus_message_append(call, "a(sa(sv))", 0);
    run.call = callAsync(_bus, call, kPatience, [this, name](sd_bus_message* reply) {
        if (const BusError error = errorOf(reply)) return end(name, ActionEnd::kNotStarted, 0, error.message);
        look(name);
    });
}

void TransientUnits::find(const std::string& name, Ended ended) {
    begin(name, std::move(ended));
    look(name);
}

/// Asks anew, in place of a question that is under way, which may have been too early.
void TransientUnits::look(const std::string& name) {
    const auto found = _runs.find(name);
    if (found == _runs.end()) return;
    const BusMessagePointer message = newCall(_bus, kName, found->second.path.c_str(), kProperties, "GetAll");
    sd_bus_message_append(message.get(), "s", "");
    found->second.call =
        callAsync(_bus, message.get(), kPatience, [this, name](sd_bus_message* reply) { read(name, reply); });
}

void TransientUnits::read(const std::string& name, sd_bus_message* reply) {
    if (const BusError error = errorOf(reply)) return end(name, ActionEnd::kUnknown, 0, error.message);
    std::string loaded, active, detail, result;
    std::int32_t status = 0, code = 0;
    logind::readProperties(reply, [&](const std::string& property, const std::string&) {
        if (property == "LoadState")
            loaded = logind::readText(reply);
        else if (property == "ActiveState")
            active = logind::readText(reply);
        else if (property == "SubState")
            detail = logind::readText(reply);
        else if (property == "Result")
            result = logind::readText(reply);
        else if (property == "ExecMainStatus")
            sd_bus_message_read_basic(reply, 'i', &status);
        else if (property == "ExecMainCode")
            sd_bus_message_read_basic(reply, 'i', &code);
    });
    if (loaded == "not-found" || active == "inactive") return end(name, ActionEnd::kUnknown, 0, {});
    if (active == "active" && detail == "exited") return end(name, ActionEnd::kRan, status, {});
    if (active != "failed") return;  // it runs
    if (result == "timeout") return end(name, ActionEnd::kTimedOut, 0, {});
    if (code == 0) return end(name, ActionEnd::kNotStarted, 0, result);
    end(name, ActionEnd::kFailed, status, result == "exit-code" ? std::string() : result);
}

void TransientUnits::end(const std::string& name, ActionEnd end, int status, const std::string& reason) {
    const auto run = _runs.extract(name);
    if (run.empty()) return;
    // Whichever of the two states it is in, it is forgotten now.
    for (const char* method : {"StopUnit", "ResetFailedUnit"}) {
        const BusMessagePointer message = newCall(_bus, kName, kPath, kManager, method);
        sd_bus_message_append(message.get(), "s", name.c_str());
        if (method == std::string_view("StopUnit")) sd_bus_message_append(message.get(), "s", "replace");
        sd_bus_message_set_expect_reply(message.get(), 0);
        sd_bus_send(_bus, message.get(), nullptr);
    }
    run.mapped().ended(end, status, reason);
}

}  // namespace quorel
