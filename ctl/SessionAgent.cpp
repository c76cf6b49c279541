#include "ctl/SessionAgent.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "linux/bus/Bus.h"
#include "model/Wire.h"

namespace quorel {

namespace {

constexpr std::uint64_t kPatience = 5'000'000;

}  // namespace

bool isAgentMissing() {
    if (!std::getenv("WAYLAND_DISPLAY") && !std::getenv("DISPLAY")) return false;
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return false;
    const BusConnection session(bus);
    sd_bus_set_method_call_timeout(bus, kPatience);
    return sd_bus_get_name_creds(bus, kUserAgentName.data(), 0, nullptr) == -ENXIO;
}

}  // namespace quorel
