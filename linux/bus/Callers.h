#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "linux/bus/Bus.h"
#include "linux/bus/BusEndpoint.h"
#include "linux/bus/PolkitQuestion.h"
#include "linux/bus/PublicConnection.h"

namespace quorel {

enum class Verdict { Allowed, Refused, Dismissed, NobodyToAsk };
/// Tells the caller why it was not allowed.
const char* textOf(Verdict verdict);

class Callers;

/// A call that waits for its answer. Who has called is known by its connection's unique name, which the bus stamps on
/// each message and never gives to another connection. When the caller leaves the bus, the call is gone: what a caller
/// has given up must not be done behind its back. No callback of a call comes after it has gone.
class HeldCall {
public:
    HeldCall(Callers& callers, std::string caller, const BusAnswer& answer, std::function<void(HeldCall&)> known,
             std::function<void()> gone);
    ~HeldCall();
    HeldCall(const HeldCall&) = delete;

    const std::string& caller() const { return _caller; }
    /// As the bus vouches for it; once known.
    unsigned user() const { return *_user; }
    /// Root may everything: polkit is not asked.
    bool isRoots() const { return user() == 0; }
    /// Asks polkit, except about root; then `answered` is called at once. With interaction,
    /// somebody may be asked, which takes up to five minutes. When the call goes, a dialog that is open is closed.
    void ask(const char* action, bool interaction, std::function<void(Verdict)> answered);

    // Either is the end of the call: it has gone when they return.
    void accept(std::string_view content = {});
    void accept(const Dictionary& content);
    void refuse(const char* errorName, const std::string& text);

private:
    friend class Callers;
    Callers& _callers;
    const std::string _caller;
    const BusAnswer _answer;
    std::function<void(HeldCall&)> _known;
    const std::function<void()> _gone;
    std::optional<unsigned> _user;  // once known
    BusSlot _userQuestion;
    std::optional<PolkitQuestion> _question;
};

/// All callers of a program who wait, on whichever of its objects, and how many may: one call of a connection, four of
/// a user, sixteen of all users but root, who has four places of its own. Whoever is not known yet takes no place:
/// while sixteen of these wait for the bus to name them, no further message is read from the connection.
class Callers {
public:
    static constexpr std::size_t kMostUnknown = 16;
    static constexpr std::ptrdiff_t kMostOfAUser = 4;  // so that nobody's open dialogs keep everybody else out
    static constexpr std::ptrdiff_t kMostOfAll = 16;
    static constexpr std::size_t kMostUsersRemembered = 256;

    /// `calls` is where callers come in, `bus` where they are asked about.
    Callers(PublicConnection& calls, sd_bus* bus) : _calls(calls), _bus(bus) {}
    Callers(const Callers&) = delete;

    /// Where objects for them are to be added.
    sd_bus* connection() const { return _calls.get(); }
    sd_bus* bus() const { return _bus; }
    bool areBehind() const { return _calls.isBehind(); }

    using Known = std::function<void(HeldCall&)>;
    /// Holds a call until it is accepted or refused. `known` is called later, once the user is known; `gone` before
    /// the call goes by itself after that. Refuses by itself when too many wait.
    void hold(sd_bus_message* call, const Known& known);
    void hold(const std::string& caller, const BusAnswer& answer, const Known& known,
              const std::function<void()>& gone = {});
    /// Null when the caller does not wait.
    HeldCall* find(std::string_view caller);

private:
    friend class HeldCall;
    void findUser(HeldCall& call);
    void userFound(HeldCall& call, std::optional<unsigned> user);
    bool isFull(unsigned user) const;
    void watch();
    void left(const std::string& caller);
    void drop(HeldCall& call);
    void end(HeldCall& call);
    void leaveUnknown();

    PublicConnection& _calls;
    sd_bus* const _bus;
    std::map<std::string, HeldCall, std::less<>> _held;   // by the caller's bus name
    std::size_t _unknown = 0;                             // of them
    std::map<std::string, unsigned, std::less<>> _users;  // of those who have called; a bus name is nobody else's later
    BusSlot _leaving;                                     // while anybody waits
};

}  // namespace quorel
