#include "linux/AsyncBus.h"

#include <sys/epoll.h>

#include <ctime>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

void destroyHandler(void* handler) {
    delete static_cast<BusHandler*>(handler);
}

int handle(sd_bus_message* message, void* handler, sd_bus_error*) {
    (*static_cast<BusHandler*>(handler))(message);
    return 0;
}

/// The handler belongs to the slot from here on.
BusReference owning(int result, sd_bus_slot* slot, std::unique_ptr<BusHandler> handler) {
    if (result < 0) {
        MOLLog("The bus cannot be used: error %d.", -result);
        return {};
    }
    sd_bus_slot_set_destroy_callback(slot, destroyHandler);
    handler.release();
    return BusReference(slot);
}

// The loop keeps a source, and with it the call, until a handler that drops it has returned; so does the bus.

using Call = std::function<void()>;

void destroyCall(void* call) {
    delete static_cast<Call*>(call);
}

/// The call belongs to the source from here on.
EventSource owning(int result, sd_event_source* source, std::unique_ptr<Call> call) {
    if (result < 0) {
        MOLLog("The event loop cannot be used: error %d.", -result);
        return {};
    }
    sd_event_source_set_destroy_callback(source, destroyCall);
    call.release();
    return EventSource(source);
}

}  // namespace

BusError errorOf(sd_bus_message* reply) {
    const sd_bus_error* error = sd_bus_message_get_error(reply);
    if (!error || !error->name) return {};
    return {error->name, error->message ? error->message : error->name};
}

BusRequest newRequest(sd_bus* bus, const BusObject& object, const char* member) {
    sd_bus_message* request = nullptr;
    sd_bus_message_new_method_call(bus, &request, object.name, object.path, object.interface, member);
    return BusRequest(request);
}

BusCall callAsync(sd_bus* bus, BusRequest request, BusHandler answered, std::uint64_t patience) {
    auto handler = std::make_unique<BusHandler>(std::move(answered));
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_call_async(bus, &slot, request.get(), handle, handler.get(), patience);
    return owning(result, slot, std::move(handler));
}

BusWatch watchBus(sd_bus* bus, const std::string& rule, BusHandler heard) {
    auto handler = std::make_unique<BusHandler>(std::move(heard));
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_match_async(bus, &slot, rule.c_str(), handle, nullptr, handler.get());
    return owning(result, slot, std::move(handler));
}

EventSource callLater(sd_event* loop, std::uint64_t delay, std::function<void()> call) {
    auto owned = std::make_unique<Call>(std::move(call));
    sd_event_source* source = nullptr;
    const auto reached = [](sd_event_source*, std::uint64_t, void* data) {
        (*static_cast<Call*>(data))();
        return 0;
    };
    const int result = sd_event_add_time_relative(loop, &source, CLOCK_MONOTONIC, delay, 1000, reached, owned.get());
    return owning(result, source, std::move(owned));
}

EventSource callWhenReadable(sd_event* loop, int descriptor, std::function<void()> call) {
    auto owned = std::make_unique<Call>(std::move(call));
    sd_event_source* source = nullptr;
    const auto readable = [](sd_event_source*, int, std::uint32_t, void* data) {
        (*static_cast<Call*>(data))();
        return 0;
    };
    const int result = sd_event_add_io(loop, &source, descriptor, EPOLLIN, readable, owned.get());
    return owning(result, source, std::move(owned));
}

}  // namespace quorel
