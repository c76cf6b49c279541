#include "linux/login/Logind.h"

#include <fcntl.h>

#include <utility>

namespace quorel {

namespace logind {

BusSlot watch(sd_bus* bus, const char* member, std::function<void(sd_bus_message* signal)> heard) {
    const std::string rule =
        std::string("path='") + kManager.path + "',interface='" + kManager.interface + "',member='" + member + "'";
    return watchSignals(bus, kName, rule, std::move(heard));
}

bool readProperties(sd_bus_message* reply,
                    const std::function<void(const std::string& name, const std::string& type)>& read) {
    if (sd_bus_message_enter_container(reply, 'a', "{sv}") < 0) return false;
    while (sd_bus_message_enter_container(reply, 'e', "sv") > 0) {
        const char* name = nullptr;
        const char* type = nullptr;
        if (sd_bus_message_read_basic(reply, 's', &name) < 0 || sd_bus_message_peek_type(reply, nullptr, &type) <= 0)
            return false;
        const std::string contents = type;
        if (sd_bus_message_enter_container(reply, 'v', contents.c_str()) <= 0) return false;
        read(name, contents);
        while (!sd_bus_message_at_end(reply, false))
            if (sd_bus_message_skip(reply, nullptr) < 0) return false;
        if (sd_bus_message_exit_container(reply) < 0 || sd_bus_message_exit_container(reply) < 0) return false;
    }
    return sd_bus_message_exit_container(reply) >= 0;
}

std::string readText(sd_bus_message* message) {
    const char* text = nullptr;
    return sd_bus_message_read_basic(message, 's', &text) > 0 ? text : "";
}

bool readFlag(sd_bus_message* message) {
    int flag = 0;
    return sd_bus_message_read_basic(message, 'b', &flag) > 0 && flag != 0;
}

std::uint64_t readNumber(sd_bus_message* message) {
    std::uint64_t number = 0;
    return sd_bus_message_read_basic(message, 't', &number) > 0 ? number : 0;
}

}  // namespace logind

void InhibitorLock::take(const std::string& why, std::function<void(const BusError&)> failed) {
    if (_lock || _call) return;
    const auto answered = [this, failed = std::move(failed)](sd_bus_message* reply) {
        _call.reset();
        int lock = -1;
        if (const BusError error = errorOf(reply))
            failed(error);
        else if (sd_bus_message_read_basic(reply, 'h', &lock) > 0)
            _lock = FileDescriptor(fcntl(lock, F_DUPFD_CLOEXEC, 3));  // the message closes its own
        else
            failed({"", "an answer of another kind"});
    };
    _call = logind::call(_bus, logind::kPatience, logind::kManager, "Inhibit", answered, "ssss", _what, "Quorel",
                         why.c_str(), _mode);
}

void InhibitorLock::release() {
    _call.reset();
    _lock.close();
}

}  // namespace quorel
