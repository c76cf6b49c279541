#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "daemon/UserLimit.h"
#include "linux/EventLoop.h"

namespace quorel {

/// What the journal says of saves that changed nothing, which anybody may send: five lines a minute of each user, then
/// how many more there were. The journal would drop other lines of this program otherwise.
class SaveLog {
public:
    explicit SaveLog(EventLoop& loop);

    void say(unsigned user, const std::string& text);

private:
    UserLimit _limit{5};
    std::map<unsigned, std::size_t> _unsaid;
    LoopTimer _minute;
};

}  // namespace quorel
