#include "linux/bus/BusEndpoint.h"

#include <exception>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusValues.h"
#include "model/PlainText.h"
#include "model/Wire.h"

namespace quorel {

struct BusAnswer::State {
    explicit State(sd_bus_message* message) : _message(sd_bus_message_ref(message)) {}
    ~State() { refuse(wire::kFailed, "The call was not handled."); }

    void accept(std::string_view content) {
        if (std::exchange(_answered, true)) return;
        sd_bus_message* reply = nullptr;
        sd_bus_message_new_method_return(_message.get(), &reply);
        const BusMessagePointer owned(reply);
        if (sd_bus_message_is_method_call(_message.get(), nullptr, wire::kPostEdits) > 0)
            sd_bus_message_append_array(reply, 'y', content.data(), content.size());
        sd_bus_send(sd_bus_message_get_bus(_message.get()), reply, nullptr);
    }
    void accept(const Dictionary& content) {
        if (!std::exchange(_answered, true)) replyDictionary(_message.get(), content);
    }
    void refuse(const char* errorName, const char* text) {
        const sd_bus_error error = SD_BUS_ERROR_MAKE_CONST(errorName, text);
        if (!std::exchange(_answered, true)) sd_bus_reply_method_error(_message.get(), &error);
    }

private:
    const BusMessagePointer _message;
    bool _answered = false;
};

namespace {

int readBytes(sd_bus_message* message, std::string_view& bytes) {
    const void* first = nullptr;
    std::size_t size = 0;
    const int result = sd_bus_message_read_array(message, 'y', &first, &size);
    bytes = {static_cast<const char*>(first), size};
    return result;
}

}  // namespace

BusAnswer::BusAnswer(sd_bus_message* call) : _state(std::make_shared<State>(call)) {}

void BusAnswer::accept(std::string_view content) const {
    _state->accept(content);
}

void BusAnswer::accept(const Dictionary& content) const {
    _state->accept(content);
}

void BusAnswer::refuse(const char* errorName, const std::string& text) const {
    _state->refuse(errorName, plainLines(text).c_str());
}

BusEndpoint::BusEndpoint(sd_bus* bus, Handler handler, Pong pong)
    : _handler(std::move(handler)), _pong(std::move(pong)) {
    static constexpr sd_bus_vtable kMethods[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_ARGS(wire::kPing, SD_BUS_NO_ARGS, SD_BUS_RESULT("b", alive), &BusEndpoint::ping,
                                SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD_WITH_ARGS(wire::kPostNotification, SD_BUS_ARGS("s", name, "s", object, "ay", userInfo),
                                SD_BUS_NO_RESULT, &BusEndpoint::post, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD_WITH_ARGS(wire::kPostEdits, SD_BUS_ARGS("s", name, "s", object, "ay", userInfo, "ay", base),
                                SD_BUS_RESULT("ay", joined), &BusEndpoint::post, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    _slot = addObject(bus, wire::kPath, wire::kInterface, kMethods, this);
}

int BusEndpoint::ping(sd_bus_message* message, void* self, sd_bus_error*) {
    const auto& pong = static_cast<BusEndpoint*>(self)->_pong;
    return sd_bus_reply_method_return(message, "b", static_cast<int>(!pong || pong()));
}

int BusEndpoint::post(sd_bus_message* message, void* self, sd_bus_error* error) try {
    const auto& handler = static_cast<BusEndpoint*>(self)->_handler;
    if (!handler) return sd_bus_error_set(error, wire::kUnknownNotification, "This program takes no notifications.");
    BusNotification notification;
    const char* name = nullptr;
    const char* object = nullptr;
    int result = sd_bus_message_read(message, "ss", &name, &object);
    if (result >= 0) result = readBytes(message, notification.userInfo);
    if (result >= 0 && sd_bus_message_is_method_call(message, nullptr, wire::kPostEdits) > 0)
        result = readBytes(message, notification.base.emplace());
    if (result < 0) return result;
    notification.name = name;
    notification.object = object;
    if (const char* sender = sd_bus_message_get_sender(message)) notification.sender = sender;
    notification.mayAsk = sd_bus_message_get_allow_interactive_authorization(message) > 0;
    handler(notification, BusAnswer(message));
    return 1;
} catch (const std::exception& exception) {  // memory has run out
    MOLLog("A notification is lost: %s", exception.what());
    return sd_bus_error_set(error, wire::kFailed, "The notification was not handled.");
}

}  // namespace quorel
