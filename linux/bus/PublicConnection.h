#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "linux/bus/Bus.h"

namespace quorel {

/// A connection to the system's bus on which whoever likes to may call this program. Its own questions go over another
/// one, so that neither they nor their answers stand behind what strangers have sent: the bus hands over one message
/// after the other, whoever has sent it, a few at a turn, and takes few kilobytes of answers at a turn.
///
/// So that others come to their turn, a connection that has sent very much before it can have seen an answer is not
/// answered any more. The bus lets each have 128 calls unanswered, and refuses the others by itself.
class PublicConnection {
public:
    /// Of one connection, while a message goes to the bus and back.
    static constexpr int kMostAtOnce = 32;
    static constexpr int kMostUnsent = 8;
    static constexpr std::size_t kMostRemembered = 4096;

    /// As connectTo, but everything else on the loop comes first. Throws std::runtime_error.
    explicit PublicConnection(EventLoop& loop);
    PublicConnection(const PublicConnection&) = delete;

    sd_bus* get() const { return _bus.get(); }
    /// While it pauses, nothing is read or sent: what comes stays with the bus, which counts it against the sender.
    void pause(bool pauses);
    /// Whether answers wait that the bus has not taken yet. Long ones are better refused then.
    bool isBehind() const;

private:
    static int received(sd_bus_message* message, void* self, sd_bus_error*);
    bool mayCall(const std::string& caller);

    EventLoop& _loop;
    const BusConnection _bus;
    BusSlot _filter;
    BusSlot _turn;                                   // a message that goes to the bus and back
    std::map<std::string, int, std::less<>> _calls;  // meanwhile, by the caller's bus name
    std::set<std::string, std::less<>> _unanswered;  // who has sent too much
};

}  // namespace quorel
