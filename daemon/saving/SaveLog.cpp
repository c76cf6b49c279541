#include "daemon/saving/SaveLog.h"

#include <chrono>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

SaveLog::SaveLog(EventLoop& loop)
    : _minute(loop, [this] {
          for (const auto& [user, lines] : std::exchange(_unsaid, {}))
              MOLLog("Preferences of user %u: %zu more lines like these.", user, lines);
      }) {}

void SaveLog::say(unsigned user, const std::string& text) {
    if (_limit.admit(user, std::chrono::steady_clock::now()))
        return MOLLog("Preferences of user %u are %s", user, text.c_str());
    ++_unsaid[user];
    if (!_minute.isRunning()) _minute.start(std::chrono::minutes(1));
}

}  // namespace quorel
