#pragma once

#include <functional>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"

namespace quorel {

/// One question to polkit: whether the process behind a unique bus name, which unlike a process number never passes to
/// another one, may do something. When it goes unanswered, polkit closes the dialog that it has opened.
class PolkitQuestion {
public:
    struct Answer {
        bool authorized = false;
        bool challenge = false;      ///< it would take a person's answer
        bool dismissed = false;      ///< the person did not want to give it
        std::string temporaryGrant;  ///< id of what polkit keeps for a while; empty for none
    };
    /// Nothing when polkit could not be asked or has not answered: within some seconds, or five minutes where somebody
    /// may be asked. The question may be let go in it.
    using Answered = std::function<void(std::optional<Answer>)>;

    /// `answered` is called later, never in here.
    PolkitQuestion(sd_bus* bus, const std::string& busName, const char* action, bool interaction, Answered answered);
    ~PolkitQuestion();
    PolkitQuestion(const PolkitQuestion&) = delete;

private:
    sd_bus* const _bus;
    std::string _cancellation;  // names the question while it may have a dialog; empty otherwise
    BusSlot _call;
};

inline constexpr const char* kPolkitName = "org.freedesktop.PolicyKit1";
inline constexpr const char* kPolkitPath = "/org/freedesktop/PolicyKit1/Authority";
inline constexpr const char* kPolkitInterface = "org.freedesktop.PolicyKit1.Authority";

/// A call of polkit's own interface.
BusMessagePointer callToPolkit(sd_bus* bus, const char* method);

}  // namespace quorel
