#include "linux/units/TransientUnit.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "linux/login/Logind.h"

namespace quorel {

namespace {

constexpr const char* kName = "org.freedesktop.systemd1";
constexpr const char* kPath = "/org/freedesktop/systemd1";
constexpr const char* kManager = "org.freedesktop.systemd1.Manager";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kUnitExists = "org.freedesktop.systemd1.UnitExists";
constexpr std::chrono::seconds kPatience{30};

// A service manager ends a process that it could not make into the program with a status of its own.
constexpr int kFirstOwnStatus = 200;
constexpr int kLastOwnStatus = 242;
constexpr int kCannotExecute = 203;

std::string pathOf(const std::string& name) {
    char* path = nullptr;
    if (sd_bus_path_encode("/org/freedesktop/systemd1/unit", name.c_str(), &path) < 0) return {};
    const std::unique_ptr<char, decltype(&std::free)> owned(path, std::free);
    return path;
}

BusMessagePointer managerCall(sd_bus* bus, const char* method) {
    BusMessagePointer message = newCall(bus, kName, kPath, kManager, method);
    if (message) sd_bus_message_set_auto_start(message.get(), false);
    return message;
}

bool isAbsence(const BusError& error) {
    return error.name == SD_BUS_ERROR_SERVICE_UNKNOWN || error.name == SD_BUS_ERROR_NAME_HAS_NO_OWNER;
}

/// The manager may have done what it was asked, or is about to come back.
bool isSilence(const BusError& error) {
    return error.name == SD_BUS_ERROR_NO_REPLY || error.name == SD_BUS_ERROR_TIMEOUT ||
           error.name == SD_BUS_ERROR_DISCONNECTED;
}

}  // namespace

TransientUnits::TransientUnits(sd_bus* bus) : _bus(bus) {
    // The manager's programs run on while it is replaced by a newer one.
    _restarts = watchOwner(bus, kName, [this](const std::string& owner) {
        if (owner.empty()) return;
        _subscription.reset();
        for (const auto& run : _runs) fetchState(run.first);
    });
}

TransientUnits::Run& TransientUnits::begin(const std::string& name, Ended ended) {
    Run& run = _runs[name] = Run{std::move(ended)};
    run.path = pathOf(name);
    run.signals =
        watchSignals(_bus, kName, "path='" + run.path + "',interface='" + kProperties + "',member='PropertiesChanged'",
                     [this, name](sd_bus_message*) { fetchState(name); });
    return run;
}

void TransientUnits::start(const std::string& name, const UnitProgram& program, Ended ended) {
    Run& run = begin(name, std::move(ended));
    const BusMessagePointer message = managerCall(_bus, "StartTransientUnit");
    sd_bus_message_append(message.get(), "ss", name.c_str(), "fail");
    appendProperties(message.get(), program);
    sd_bus_message_append(message.get(), "a(sa(sv))", 0);
    run.call = callAsync(_bus, message.get(), kPatience, [this, name](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        if (!error) return fetchState(name);
        if (error.name == kUnitExists || isSilence(error)) return hold(name);
        end(name, ActionEnd::kNotStarted, 0, isAbsence(error) ? std::string(outcome::kNoManager) : error.message);
    });
}

void TransientUnits::find(const std::string& name, Ended ended) {
    begin(name, std::move(ended));
    hold(name);
}

/// Makes sure that the unit stays, and looks how it is.
void TransientUnits::hold(const std::string& name) {
    const BusMessagePointer message = managerCall(_bus, "RefUnit");
    sd_bus_message_append(message.get(), "s", name.c_str());
    _runs.at(name).call = callAsync(_bus, message.get(), kPatience, [this, name](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        if (!error) return fetchState(name);
        if (isSilence(error)) return hold(name);
        end(name, ActionEnd::kUnknown, 0, {});
    });
}

/// Asks anew, in place of a question that is under way, which may have been too early.
void TransientUnits::fetchState(const std::string& name) {
    if (!_subscription) {  // the manager tells of units only when asked to
        const BusMessagePointer message = managerCall(_bus, "Subscribe");
        _subscription = callAsync(_bus, message.get(), kPatience, [](sd_bus_message*) {});
    }
    Run& run = _runs.at(name);
    const BusMessagePointer message = newCall(_bus, kName, run.path.c_str(), kProperties, "GetAll");
    sd_bus_message_append(message.get(), "s", "");
    run.call = callAsync(_bus, message.get(), kPatience, [this, name](sd_bus_message* reply) { read(name, reply); });
}

void TransientUnits::read(const std::string& name, sd_bus_message* reply) {
    if (const BusError error = errorOf(reply)) {
        if (isSilence(error)) return fetchState(name);
        if (!isAbsence(error)) end(name, ActionEnd::kUnknown, 0, {});
        return;
    }
    std::string loaded, active, result;
    std::int32_t status = 0, code = 0;
    std::uint32_t job = 0;
    logind::readProperties(reply, [&](const std::string& property, const std::string& type) {
        if (property == "LoadState")
            loaded = logind::readText(reply);
        else if (property == "ActiveState")
            active = logind::readText(reply);
        else if (property == "Result")
            result = logind::readText(reply);
        else if (property == "ExecMainStatus")
            sd_bus_message_read_basic(reply, 'i', &status);
        else if (property == "ExecMainCode")
            sd_bus_message_read_basic(reply, 'i', &code);
        else if (property == "Job" && type == "(uo)")
            sd_bus_message_read(reply, "(uo)", &job, nullptr);
    });
    if (loaded == "not-found") return end(name, ActionEnd::kUnknown, 0, {});
    if (job != 0 || (active != "inactive" && active != "failed")) return;  // it is being started, or runs
    if (result == "timeout") return end(name, ActionEnd::kTimedOut, 0, {});
    if (code == 0) return end(name, ActionEnd::kNotStarted, 0, result);
    if (code != CLD_EXITED) {
        const auto reason = result == "oom-kill" ? outcome::kMemory : outcome::kSignal;
        return end(name, ActionEnd::kFailed, status, std::string(reason));
    }
    if (status >= kFirstOwnStatus && status <= kLastOwnStatus) {
        const auto reason = status == kCannotExecute ? outcome::kNoProgram : outcome::kNoSandbox;
        return end(name, ActionEnd::kNotStarted, status, std::string(reason));
    }
    end(name, status == 0 ? ActionEnd::kRan : ActionEnd::kFailed, status, {});
}

void TransientUnits::end(const std::string& name, ActionEnd end, int status, const std::string& reason) {
    const auto run = _runs.extract(name);
    if (run.empty()) return;
    const BusMessagePointer message = managerCall(_bus, "UnrefUnit");
    sd_bus_message_append(message.get(), "s", name.c_str());
    if (message) sd_bus_message_set_expect_reply(message.get(), 0);
    if (message) sd_bus_send(_bus, message.get(), nullptr);
    run.mapped().ended(end, status, reason);
}

}  // namespace quorel
