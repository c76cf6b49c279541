#include "linux/login/SleepKinds.h"

#include <string>
#include <utility>

namespace quorel {

void SleepKinds::ask() {
    for (std::size_t i = 0; i < kSleepCalls.size(); ++i) {
        const auto read = [this, i](sd_bus_message* reply) {
            const auto call = std::move(_calls[i]);
            answered(kSleepCalls[i].kind, reply);
        };
        _calls[i] = logind::call(_bus, logind::kPatience, logind::kManager, kSleepCalls[i].can, read, "");
    }
}

/// "yes" and "challenge" are the same to root.
void SleepKinds::answered(SleepKind kind, sd_bus_message* reply) {
    const BusError error = errorOf(reply);
    const bool isUnknown = error && error.name == SD_BUS_ERROR_UNKNOWN_METHOD;
    if (error && !isUnknown) return;
    const std::string answer = isUnknown ? "na" : logind::readText(reply);
    if (answer == "na" || answer == "no")
        _denied.insert(kind);
    else
        _denied.erase(kind);
    _told(_denied);
}

}  // namespace quorel
