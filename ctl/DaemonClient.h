#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "linux/bus/BusPeer.h"
#include "model/Value.h"

namespace quorel {

/// The daemon's scheduler, asked over the system bus. Asking never starts a daemon that does not run. What changes
/// something is tried again while the daemon is busy, for ten seconds.
class DaemonClient {
public:
    enum class Failure {
        kNone,
        kNoBus,
        kNotRunning,
        kNoAnswer,
        kNotSent,        ///< a text of the call is not in UTF-8
        kNotUnderstood,  ///< the answer is of another kind than expected
        kRefused,        ///< see `error`
    };
    struct Answer {
        Failure failure = Failure::kNone;
        std::string error;  ///< its name on the bus
        std::string text;   ///< what it says; somebody else's text
        Value value;
    };

    DaemonClient();
    DaemonClient(const DaemonClient&) = delete;

    /// A method that tells something: at most so many of it, where that is given.
    Answer ask(const char* method, std::optional<unsigned> most = {});
    /// A method that changes something about an occurrence. Somebody may be asked for a password, which takes minutes.
    Answer change(const char* method, const std::string& token, std::optional<std::int64_t> seconds = {});
    /// Has a Schedule carried out once, now. As above.
    Answer tryNow(const Value& schedule);
    /// See Scheduler1. The value is the pause that is set.
    Answer pause(std::int64_t from, std::int64_t until);

    /// Has preferences stored that were made of `base`. Somebody may be asked for a password. The value says what was
    /// joined with what others have stored.
    Answer save(const Value& preferences, const Value& base);

private:
    struct Method {
        const char *path, *interface, *name;
    };
    Answer say(const char* method, const std::function<int(sd_bus_message*)>& append);
    /// Somebody may be asked for a password.
    Answer say(const Method& method, const std::function<int(sd_bus_message*)>& append);
    Answer call(sd_bus_message* message, std::chrono::seconds patience);

    BusPeer _daemon;
};

}  // namespace quorel
