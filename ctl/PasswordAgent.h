#pragma once

#include <sys/types.h>

namespace quorel {

/// Asks for passwords on the terminal while it is there, for calls of this program that polkit lets nobody make
/// without, where no agent of the session does. It does nothing for root, without a terminal, and where polkit has no
/// agent for terminals.
class PasswordAgent {
public:
    /// Returns when it can be asked.
    PasswordAgent();
    ~PasswordAgent();
    PasswordAgent(const PasswordAgent&) = delete;

private:
    pid_t _process = -1;
};

}  // namespace quorel
