#include "ctl/DaemonClient.h"

#include <cstdint>
#include <utility>

#include "ctl/PasswordAgent.h"
#include "linux/bus/BusValues.h"
#include "model/Names.h"

namespace quorel {

namespace {

constexpr std::uint64_t kPatience = 10'000'000;
constexpr std::uint64_t kPatienceWithPeople = 6 * 60 * std::uint64_t{1'000'000};

DaemonClient::Failure failureOf(const sd_bus_error* error) {
    using Failure = DaemonClient::Failure;
    for (const char* absent : {SD_BUS_ERROR_NAME_HAS_NO_OWNER, SD_BUS_ERROR_SERVICE_UNKNOWN})
        if (sd_bus_error_has_name(error, absent)) return Failure::kNotRunning;
    // The daemon has ended meanwhile, or is stuck.
    for (const char* silent : {SD_BUS_ERROR_NO_REPLY, SD_BUS_ERROR_TIMEOUT, SD_BUS_ERROR_DISCONNECTED})
        if (sd_bus_error_has_name(error, silent)) return Failure::kNoAnswer;
    return Failure::kRefused;
}

}  // namespace

DaemonClient::DaemonClient() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) >= 0) _bus.reset(bus);
}

BusMessagePointer DaemonClient::newCall(const char* method) const {
    BusMessagePointer message =
        quorel::newCall(_bus.get(), kDaemonName.data(), wire::scheduler::kPath, wire::scheduler::kInterface, method);
    if (message) sd_bus_message_set_auto_start(message.get(), false);
    return message;
}

DaemonClient::Answer DaemonClient::ask(const char* method, std::optional<unsigned> most) {
    if (!_bus) return {Failure::kNoBus, {}, {}, {}};
    const BusMessagePointer message = newCall(method);
    if (most) sd_bus_message_append(message.get(), "u", *most);
    return call(message.get(), kPatience);
}

DaemonClient::Answer DaemonClient::change(const char* method, const std::string& token) {
    if (!_bus) return {Failure::kNoBus, {}, {}, {}};
    const BusMessagePointer message = newCall(method);
    if (message && sd_bus_message_append(message.get(), "s", token.c_str()) < 0) return {Failure::kNotSent, {}, {}, {}};
    const PasswordAgent agent;
    sd_bus_message_set_allow_interactive_authorization(message.get(), true);
    return call(message.get(), kPatienceWithPeople);
}

DaemonClient::Answer DaemonClient::call(sd_bus_message* message, std::uint64_t microseconds) {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* reply = nullptr;
    Answer answer;
    if (!message || sd_bus_call(_bus.get(), message, microseconds, &error, &reply) < 0) {
        answer.failure = sd_bus_error_is_set(&error) ? failureOf(&error) : Failure::kNoAnswer;
        if (error.name) answer.error = error.name;
        if (error.message) answer.text = error.message;
    } else if (sd_bus_message_is_empty(reply) == 0) {
        std::optional<Value> value = readValue(reply);
        if (!value) answer.failure = Failure::kNotUnderstood;
        if (value) answer.value = std::move(*value);
    }
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
    return answer;
}

}  // namespace quorel
