#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"
#include "linux/bus/PolkitQuestion.h"

namespace quorel {

enum class Verdict { Allowed, Refused, Dismissed, NobodyToAsk };
/// Tells the caller why it was not allowed.
const char* textOf(Verdict verdict);

/// More connections than the bus allows one user, so that nobody alone can fill a table of callers who are not known
/// yet.
inline constexpr std::size_t kMostCallers = 300;

/// Who has called this program, while the call is handled. The identity is the connection's unique name, which the bus
/// stamps on each message and never gives to another connection. Callbacks may let the caller go; nothing is called
/// after that, nor before the functions here have returned.
class BusCaller {
public:
    /// `gone` is called when the caller leaves the bus: what a caller has given up must not be done behind its back.
    /// Letting the caller go closes a dialog that is open for it.
    BusCaller(sd_bus* bus, std::string name, std::function<void()> gone);
    ~BusCaller();
    BusCaller(const BusCaller&) = delete;

    const std::string& name() const { return _name; }

    /// As the bus vouches for it. Nothing when the caller had gone before it was watched, or the bus does not say.
    void findUser(std::function<void(std::optional<unsigned> userId)> found);
    /// Asks polkit; with interaction, somebody may be asked, which takes up to five minutes.
    void ask(const char* action, bool interaction, std::function<void(Verdict)> answered);

private:
    sd_bus* const _bus;
    const std::string _name;
    BusSlot _leaving;
    BusSlot _user;
    std::optional<PolkitQuestion> _question;
};

}  // namespace quorel
