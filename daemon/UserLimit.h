#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <iterator>
#include <map>

namespace quorel {

/// How much each user may have within a minute.
class UserLimit {
public:
    explicit UserLimit(std::size_t most) : _most(most) {}

    /// Counts one more, unless it is one too many.
    bool admit(unsigned user, std::chrono::steady_clock::time_point now) {
        // Nothing older than a minute is kept, of nobody.
        for (auto each = _asked.begin(); each != _asked.end();) {
            auto& times = each->second;
            while (!times.empty() && times.front() <= now - std::chrono::minutes(1)) times.pop_front();
            each = times.empty() ? _asked.erase(each) : std::next(each);
        }
        auto& times = _asked[user];
        if (times.size() >= _most) return false;
        times.push_back(now);
        return true;
    }

private:
    const std::size_t _most;
    std::map<unsigned, std::deque<std::chrono::steady_clock::time_point>> _asked;
};

}  // namespace quorel
