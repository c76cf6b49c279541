#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "linux/Bus.h"

namespace quorel {

/// A notification as it came over the bus. Nothing in it is to be trusted but the sender.
struct BusNotification {
    std::string name;
    std::string object;
    std::string userInfo;  ///< bytes of a property list; empty for none
    std::string sender;    ///< the sender's unique name, as the bus vouches for it
};

/// The answer to one notification. Copies answer the same one, and the first answer counts. Any thread, also after
/// the endpoint has gone. When the last copy goes unanswered, the sender is told that the notification failed.
class BusAnswer {
public:
    void accept() const;
    void refuse(std::string_view errorName, std::string_view text) const;

private:
    friend class BusEndpoint;
    struct State;
    explicit BusAnswer(std::shared_ptr<State> state) : _state(std::move(state)) {}
    std::shared_ptr<State> _state;
};

/// A program's own end of the channel: answers pings and takes notifications, on a thread of its own, until it is
/// destroyed. The callbacks run on that thread one at a time; they must not block, must not throw, and must not
/// destroy the endpoint.
class BusEndpoint {
public:
    struct Options {
        Bus bus = Bus::Session;
        std::string name;            ///< the well-known name to own; empty for none
        bool nameRequired = true;    ///< not to get the name is a failure
        std::function<bool()> pong;  ///< alive when not given
        std::function<void(const BusNotification&, const BusAnswer&)> handler;  ///< refuses all when not given
        std::function<void()> lost;  ///< the bus has gone; called once, nothing comes after it
    };

    /// Returns when the endpoint can be reached. Null on failure, with the reason in `error`.
    static std::unique_ptr<BusEndpoint> open(Options options, std::string& error);
    ~BusEndpoint();
    BusEndpoint(const BusEndpoint&) = delete;
    BusEndpoint& operator=(const BusEndpoint&) = delete;

private:
    friend class BusAnswer;
    class Server;
    struct Outbox;
    explicit BusEndpoint(std::unique_ptr<Server> server);

    std::shared_ptr<Outbox> _outbox;
    std::unique_ptr<Server> _server;
    std::thread _thread;
};

}  // namespace quorel
