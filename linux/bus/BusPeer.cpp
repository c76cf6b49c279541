#include "linux/bus/BusPeer.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "model/Wire.h"

namespace quorel {

namespace {

/// None where the reply has another signature.
std::string bytesOf(sd_bus_message* reply) {
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_has_signature(reply, "ay") <= 0 || sd_bus_message_read_array(reply, 'y', &bytes, &size) <= 0)
        return {};
    return {static_cast<const char*>(bytes), size};
}

}  // namespace

/// A call under way. Must not be moved: what waits for the reply knows where it is.
struct BusPeer::Call {
    BusMessagePointer reply;
    BusSlot slot;
};

BusPeer::BusPeer(Bus bus, const char* name, Clock::time_point deadline) : _bus(beginConnection(bus)) {
    if (!_bus) return;
    const char* owner = nullptr;
    const auto reply = ask(callToBus("GetNameOwner", name).get(), deadline);
    if (reply && sd_bus_message_read(reply.get(), "s", &owner) >= 0) _owner = owner;
}

std::optional<unsigned> BusPeer::userId(Clock::time_point deadline) {
    if (_owner.empty()) return {};
    std::uint32_t user = 0;
    const auto reply = ask(callToBus("GetConnectionUnixUser", _owner.c_str()).get(), deadline);
    if (!reply || sd_bus_message_read(reply.get(), "u", &user) < 0) return {};
    return user;
}

bool BusPeer::ping(Clock::time_point deadline) {
    int alive = 0;
    const auto reply = ask(newCall(wire::kPath, wire::kInterface, wire::kPing).get(), deadline);
    return reply && sd_bus_message_read(reply.get(), "b", &alive) >= 0 && alive;
}

BusPeer::PostReply BusPeer::post(const Post& post, std::chrono::milliseconds silence, Clock::time_point deadline) {
    using Outcome = PostReply::Outcome;
    const auto message = newCall(wire::kPath, wire::kInterface, post.base ? wire::kPostEdits : wire::kPostNotification);
    Call call;
    if (!message || sd_bus_message_set_allow_interactive_authorization(message.get(), true) < 0 ||
        sd_bus_message_append(message.get(), "ss", post.name.c_str(), post.object.c_str()) < 0 ||
        sd_bus_message_append_array(message.get(), 'y', post.userInfo.data(), post.userInfo.size()) < 0 ||
        (post.base && sd_bus_message_append_array(message.get(), 'y', post.base->data(), post.base->size()) < 0) ||
        !begin(call, message.get()))
        return {Outcome::Silent};
    while (!wait(call, std::min(deadline, Clock::now() + silence))) {
        const auto now = Clock::now();
        if (now >= deadline || !ping(std::min(deadline, now + silence))) return {Outcome::Silent};
    }
    BusError error = errorOf(call.reply.get());
    if (!error) return {Outcome::Handled, {}, bytesOf(call.reply.get())};
    if (error.name == SD_BUS_ERROR_NO_REPLY) return {Outcome::Silent};  // it has ended meanwhile
    if (error.name == SD_BUS_ERROR_UNKNOWN_METHOD) error.message = "the program is of an earlier version";
    return {Outcome::Refused, std::move(error)};
}

bool BusPeer::begin(Call& call, sd_bus_message* message) {
    // The connection's own time limit must never be the shorter one.
    call.slot = callAsync(_bus.get(), message, std::chrono::microseconds::max(),
                          [&call](sd_bus_message* reply) { call.reply.reset(sd_bus_message_ref(reply)); });
    return call.slot != nullptr;
}

bool BusPeer::wait(const Call& call, Clock::time_point deadline) {
    return serveUntil(_bus.get(), deadline, [&call] { return call.reply != nullptr; });
}

BusMessagePointer BusPeer::call(sd_bus_message* message, Clock::time_point deadline) {
    Call call;
    if (message && begin(call, message)) wait(call, deadline);
    return std::move(call.reply);
}

BusMessagePointer BusPeer::ask(sd_bus_message* message, Clock::time_point deadline) {
    BusMessagePointer reply = call(message, deadline);
    if (reply && sd_bus_message_is_method_error(reply.get(), nullptr)) reply.reset();
    return reply;
}

BusMessagePointer BusPeer::callToBus(const char* method, const char* argument) {
    auto message =
        quorel::newCall(_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    sd_bus_message_append(message.get(), "s", argument);
    return message;
}

BusMessagePointer BusPeer::newCall(const char* path, const char* interface, const char* method) {
    return _owner.empty() ? nullptr : quorel::newCall(_bus.get(), _owner.c_str(), path, interface, method);
}

}  // namespace quorel
