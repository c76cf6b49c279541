#include "linux/Bus.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr std::chrono::seconds kPatience{1};       // with the bus itself, while nothing is served yet
constexpr std::chrono::seconds kLongestReply{60};  // when much that strangers have sent is in front of it

using Replied = std::function<void(sd_bus_message*)>;

int handOver(sd_bus_message* reply, void* replied, sd_bus_error*) try {
    (*static_cast<Replied*>(replied))(reply);
    return 1;
} catch (const std::exception& exception) {  // memory has run out
    MOLLog("An answer is lost: %s", exception.what());
    return 1;
}

}  // namespace

BusConnection beginConnection(Bus bus) {
    sd_bus* connection = nullptr;
    const int result = bus == Bus::System ? sd_bus_open_system(&connection) : sd_bus_open_user(&connection);
    return {result < 0 ? nullptr : connection, sd_bus_close_unref};
}

bool serveUntil(sd_bus* bus, BusDeadline deadline, const std::function<bool()>& condition) {
    while (!condition()) {
        const int result = sd_bus_process(bus, nullptr);
        if (result > 0) continue;
        const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - BusDeadline::clock::now()).count();
        if (result < 0 || left <= 0) return false;
        const int waited = sd_bus_wait(bus, static_cast<std::uint64_t>(left));
        if (waited < 0 && waited != -EINTR) return false;
    }
    return true;
}

BusConnection connectTo(Bus bus, EventLoop& loop) {
    auto connection = beginConnection(bus);
    if (!connection) throw std::runtime_error("there is no bus");
    const auto ready = [&] { return sd_bus_is_ready(connection.get()) > 0; };
    if (!serveUntil(connection.get(), BusDeadline::clock::now() + kPatience, ready))
        throw std::runtime_error("the bus does not answer");
    sd_bus_set_exit_on_disconnect(connection.get(), true);
    const int result = sd_bus_attach_event(connection.get(), loop.get(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) throw std::runtime_error(std::strerror(-result));
    return connection;
}

bool requestName(sd_bus* bus, const std::string& name) {
    sd_bus_set_method_call_timeout(bus, std::chrono::microseconds(kPatience).count());
    const int result = sd_bus_request_name(bus, name.c_str(), 0);
    // Not for what comes later: a match that the bus has not confirmed by then would close the connection.
    sd_bus_set_method_call_timeout(bus, std::chrono::microseconds(kLongestReply).count());
    if (result < 0 && result != -EEXIST)
        throw std::runtime_error("the name is refused: " + std::string(std::strerror(-result)));
    return result >= 0;
}

BusMessagePointer newCall(sd_bus* bus, const char* receiver, const char* path, const char* interface,
                          const char* method) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_method_call(bus, &message, receiver, path, interface, method);
    return {message, sd_bus_message_unref};
}

BusSlot callAsync(sd_bus* bus, sd_bus_message* call, std::chrono::microseconds limit, Replied replied) {
    auto callback = std::make_unique<Replied>(std::move(replied));
    sd_bus_slot* slot = nullptr;
    const int result =
        sd_bus_call_async(bus, &slot, call, handOver, callback.get(), static_cast<std::uint64_t>(limit.count()));
    if (result >= 0)  // sd-bus keeps the slot while it is handing over
        sd_bus_slot_set_destroy_callback(slot, [](void* owned) { delete static_cast<Replied*>(owned); });
    if (result >= 0) callback.release();
    return {slot, sd_bus_slot_unref};
}

}  // namespace quorel
