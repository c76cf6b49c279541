#include "ctl/DaemonClient.h"

#include <chrono>
#include <thread>
#include <utility>

#include "ctl/PasswordAgent.h"
#include "linux/bus/BusValues.h"
#include "model/PropertyList.h"
#include "model/Wire.h"

namespace quorel {

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::minutes kPatienceWithPeople{6};
constexpr std::chrono::seconds kBusyPatience{10};
constexpr std::chrono::milliseconds kPause{200};

DaemonClient::Failure failureOf(const BusError& error) {
    using Failure = DaemonClient::Failure;
    for (const char* absent : {SD_BUS_ERROR_NAME_HAS_NO_OWNER, SD_BUS_ERROR_SERVICE_UNKNOWN})
        if (error.name == absent) return Failure::kNotRunning;
    // The daemon has ended meanwhile, or is stuck.
    for (const char* silent : {SD_BUS_ERROR_NO_REPLY, SD_BUS_ERROR_TIMEOUT, SD_BUS_ERROR_DISCONNECTED})
        if (error.name == silent) return Failure::kNoAnswer;
    return Failure::kRefused;
}

}  // namespace

DaemonClient::DaemonClient() : _daemon(Bus::System, kDaemonName.data(), BusPeer::Clock::now() + kPatience) {}

DaemonClient::Answer DaemonClient::ask(const char* method, std::optional<unsigned> most) {
    const auto message = _daemon.newCall(wire::scheduler::kPath, wire::scheduler::kInterface, method);
    if (most) sd_bus_message_append(message.get(), "u", *most);
    return call(message.get(), kPatience);
}

DaemonClient::Answer DaemonClient::change(const char* method, const std::string& token,
                                          std::optional<std::int64_t> seconds) {
    return say(method, [&](sd_bus_message* message) {
        const int result = sd_bus_message_append(message, "s", token.c_str());
        return result >= 0 && seconds ? sd_bus_message_append(message, "x", *seconds) : result;
    });
}

DaemonClient::Answer DaemonClient::tryNow(const Value& schedule) {
    const auto bytes = encodePropertyList(schedule);
    return say(wire::scheduler::kTry, [&](sd_bus_message* message) {
        return bytes ? sd_bus_message_append_array(message, 'y', bytes->data(), bytes->size()) : -1;
    });
}

DaemonClient::Answer DaemonClient::pause(std::int64_t from, std::int64_t until) {
    return say(wire::scheduler::kPause,
               [&](sd_bus_message* message) { return sd_bus_message_append(message, "xx", from, until); });
}

DaemonClient::Answer DaemonClient::save(const Value& preferences, const Value& base) {
    const auto sent = encodePropertyList(preferences), from = encodePropertyList(base);
    return say({wire::kPath, wire::kInterface, wire::kPostEdits}, [&](sd_bus_message* message) {
        int result = -1;
        if (sent && from)
            result = sd_bus_message_append(message, "ss", kDaemonMustReloadPrefs.data(), kDaemonName.data());
        for (const auto* bytes : {&sent, &from})
            if (result >= 0) result = sd_bus_message_append_array(message, 'y', (*bytes)->data(), (*bytes)->size());
        return result;
    });
}

DaemonClient::Answer DaemonClient::say(const char* method, const std::function<int(sd_bus_message*)>& append) {
    return say({wire::scheduler::kPath, wire::scheduler::kInterface, method}, append);
}

DaemonClient::Answer DaemonClient::say(const Method& method, const std::function<int(sd_bus_message*)>& append) {
    const auto deadline = BusPeer::Clock::now() + kBusyPatience;
    const PasswordAgent agent;
    while (true) {
        const auto message = _daemon.newCall(method.path, method.interface, method.name);
        if (message && append(message.get()) < 0) return {Failure::kNotSent, {}, {}, {}};
        sd_bus_message_set_allow_interactive_authorization(message.get(), true);
        Answer answer = call(message.get(), kPatienceWithPeople);
        if (answer.error != wire::kBusy || BusPeer::Clock::now() > deadline) return answer;
        std::this_thread::sleep_for(kPause);
    }
}

DaemonClient::Answer DaemonClient::call(sd_bus_message* message, std::chrono::seconds patience) {
    if (!message) return {_daemon.hasBus() ? Failure::kNotRunning : Failure::kNoBus, {}, {}, {}};
    const auto reply = _daemon.call(message, BusPeer::Clock::now() + patience);
    if (!reply) return {Failure::kNoAnswer, {}, {}, {}};
    if (const BusError error = errorOf(reply.get())) return {failureOf(error), error.name, error.message, {}};
    Answer answer;
    if (sd_bus_message_has_signature(reply.get(), "ay") > 0) {
        const void* bytes = nullptr;
        std::size_t size = 0;
        sd_bus_message_read_array(reply.get(), 'y', &bytes, &size);
        answer.value = decodePropertyList({static_cast<const char*>(bytes), size});
    } else if (sd_bus_message_is_empty(reply.get()) == 0) {
        std::optional<Value> value = readValue(reply.get());
        if (!value) answer.failure = Failure::kNotUnderstood;
        if (value) answer.value = std::move(*value);
    }
    return answer;
}

}  // namespace quorel
