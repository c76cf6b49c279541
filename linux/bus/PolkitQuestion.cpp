#include "linux/bus/PolkitQuestion.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds kMachineLimit = 5s;
constexpr std::chrono::seconds kPersonLimit = 5min;  // somebody is looking for a password

std::optional<PolkitQuestion::Answer> answerIn(sd_bus_message* reply) {
    int authorized = 0;
    int challenge = 0;
    if (sd_bus_message_is_method_error(reply, nullptr) || sd_bus_message_enter_container(reply, 'r', "bba{ss}") < 0 ||
        sd_bus_message_read(reply, "bb", &authorized, &challenge) < 0 ||
        sd_bus_message_enter_container(reply, 'a', "{ss}") < 0)
        return {};
    PolkitQuestion::Answer answer{authorized != 0, challenge != 0, false, {}};
    const char* key = nullptr;
    const char* value = nullptr;
    while (sd_bus_message_read(reply, "{ss}", &key, &value) > 0) {
        if (key == std::string_view("polkit.dismissed")) answer.dismissed = true;
        if (key == std::string_view("polkit.temporary_authorization_id")) answer.temporaryGrant = value;
    }
    return answer;
}

}  // namespace

BusMessagePointer callToPolkit(sd_bus* bus, const char* method) {
    return newCall(bus, kPolkitName, kPolkitPath, kPolkitInterface, method);
}

PolkitQuestion::PolkitQuestion(sd_bus* bus, const std::string& busName, const char* action, bool interaction,
                               Answered answered)
    : _bus(bus) {
    static std::uint64_t questions = 0;  // of this program, whichever connection they go over
    const std::string cancellation = "quorel" + std::to_string(++questions);
    const auto call = callToPolkit(bus, "CheckAuthorization");
    const std::uint32_t allowUserInteraction = interaction ? 1 : 0;
    sd_bus_message_append(call.get(), "(sa{sv})sa{ss}us", "system-bus-name", 1, "name", "s", busName.c_str(), action, 0,
                          allowUserInteraction, cancellation.c_str());
    _call = callAsync(bus, call.get(), interaction ? kPersonLimit : kMachineLimit,
                      [this, answered = std::move(answered)](sd_bus_message* reply) {
                          _cancellation.clear();
                          answered(answerIn(reply));
                      });
    if (_call && interaction) _cancellation = cancellation;
}

PolkitQuestion::~PolkitQuestion() {
    if (_cancellation.empty()) return;
    const auto call = callToPolkit(_bus, "CancelCheckAuthorization");
    sd_bus_message_append(call.get(), "s", _cancellation.c_str());
    sd_bus_send(_bus, call.get(), nullptr);
}

}  // namespace quorel
