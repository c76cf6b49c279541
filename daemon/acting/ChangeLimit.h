#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <iterator>
#include <map>

namespace quorel {

/// How many changes users may ask for: ten a minute each.
class ChangeLimit {
public:
    static constexpr std::size_t kMost = 10;

    /// Counts one more, unless it is one too many.
    bool admit(unsigned user, std::chrono::steady_clock::time_point now) {
        // Nothing older than a minute is kept, of nobody.
        for (auto each = _asked.begin(); each != _asked.end();) {
            auto& times = each->second;
            while (!times.empty() && times.front() <= now - std::chrono::minutes(1)) times.pop_front();
            each = times.empty() ? _asked.erase(each) : std::next(each);
        }
        auto& times = _asked[user];
        if (times.size() >= kMost) return false;
        times.push_back(now);
        return true;
    }

private:
    std::map<unsigned, std::deque<std::chrono::steady_clock::time_point>> _asked;
};

}  // namespace quorel
