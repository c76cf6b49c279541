#include "daemon/CallerCheck.h"

#include <chrono>
#include <exception>

#include "linux/BusPeer.h"
#include "linux/PolkitClient.h"
#include "model/Names.h"

namespace quorel {

std::optional<unsigned> userIdOfCaller(const std::string& busName) {
    const auto deadline = BusPeer::Clock::now() + std::chrono::seconds(5);
    return BusPeer(Bus::System, busName.c_str(), deadline).userId(deadline);
}

Verdict checkCaller(const std::string& busName, unsigned userId) try {
    if (userId == 0) return Verdict::Allowed;
    const auto answer = PolkitClient().check(busName, kModifyPreferencesAction, true);
    // A name belongs to one connection for good, but its caller may have given up while somebody was asked: what it
    // was told must not be undone behind its back.
    if (answer.authorized) return userIdOfCaller(busName) == userId ? Verdict::Allowed : Verdict::Dismissed;
    return answer.dismissed ? Verdict::Dismissed : Verdict::Refused;
} catch (const std::exception&) {
    return Verdict::NobodyToAsk;
}

}  // namespace quorel
