#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "linux/bus/Bus.h"
#include "model/Dictionary.h"

namespace quorel {

/// A notification as it came over the bus; what the views show lasts as long as its answer. Nothing in it is to be
/// trusted but the sender.
struct BusNotification {
    std::string_view name;
    std::string_view object;
    std::string_view userInfo;             ///< bytes of a property list; empty for none
    std::optional<std::string_view> base;  ///< likewise, of edits: what they were made of
    std::string_view sender;               ///< the sender's unique name, as the bus vouches for it
    bool mayAsk = false;                   ///< the sender will wait until somebody has been asked
};

/// The answer to one call. Copies answer the same one, and the first answer counts. When the last copy
/// goes unanswered, the caller is told that the call failed. On the connection's thread.
class BusAnswer {
public:
    explicit BusAnswer(sd_bus_message* call);
    /// `content`: bytes that the answer to edits brings; others bring nothing.
    void accept(std::string_view content = {}) const;
    /// Of a method that answers with a dictionary.
    void accept(const Dictionary& content) const;
    void refuse(const char* errorName, const std::string& text) const;

private:
    struct State;
    std::shared_ptr<State> _state;
};

/// A program's own end of the channel, on a connection that a loop serves: answers pings and takes notifications.
class BusEndpoint {
public:
    using Handler = std::function<void(const BusNotification&, const BusAnswer&)>;
    using Pong = std::function<bool()>;

    /// Without a handler all notifications are refused; without `pong` the program is alive. Throws std::runtime_error.
    BusEndpoint(sd_bus* bus, Handler handler, Pong pong = {});
    BusEndpoint(const BusEndpoint&) = delete;

private:
    static int ping(sd_bus_message* message, void* self, sd_bus_error*);
    static int post(sd_bus_message* message, void* self, sd_bus_error* error);

    const Handler _handler;
    const Pong _pong;
    BusSlot _slot;
};

}  // namespace quorel
