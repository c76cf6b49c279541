#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"

namespace quorel {

/// The program that owns a name on a bus, as seen from here, over a connection of its own. One thread at a time.
class BusPeer {
public:
    using Clock = std::chrono::steady_clock;

    /// Does not start the program. When nobody has the name, or the bus has not said so by `deadline`, the peer
    /// is absent: pings and notifications fail at once.
    BusPeer(Bus bus, const char* name, Clock::time_point deadline);

    bool hasBus() const { return _bus != nullptr; }

    /// A call to that very program, to be filled. Null when absent.
    BusMessagePointer newCall(const char* path, const char* interface, const char* method);
    /// The reply, which may be an error; null when there is none by then.
    BusMessagePointer call(sd_bus_message* message, Clock::time_point deadline);

    /// As the bus says. Nothing when absent.
    std::optional<unsigned> userId(Clock::time_point deadline);
    bool ping(Clock::time_point deadline);

    struct Post {
        std::string name;
        std::string object;
        std::string userInfo;             ///< bytes of a property list, or none
        std::optional<std::string> base;  ///< likewise, where the call for edits is to be made
    };
    struct PostReply {
        enum class Outcome { Handled, Refused, Silent } outcome;
        BusError refusal = {};
        std::string joined = {};  ///< bytes of a property list: what edits were joined with
    };
    /// Waits as long as the peer answers a ping within `silence`, and until `deadline` at most.
    PostReply post(const Post& post, std::chrono::milliseconds silence, Clock::time_point deadline);

private:
    struct Call;
    bool begin(Call& call, sd_bus_message* message);
    /// False when there is no reply by then.
    bool wait(const Call& call, Clock::time_point deadline);
    /// The reply, or null after an error reply or none.
    BusMessagePointer ask(sd_bus_message* message, Clock::time_point deadline);
    BusMessagePointer callToBus(const char* method, const char* argument);

    BusConnection _bus;
    std::string _owner;  // its unique name: what is sent there reaches this very program and starts no other
};

}  // namespace quorel
