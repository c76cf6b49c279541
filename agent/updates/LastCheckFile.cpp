#include "agent/updates/LastCheckFile.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace quorel {

using std::chrono::seconds;
using std::chrono::sys_seconds;

std::string LastCheckFile::defaultPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    std::string folder;
    if (state && state[0] == '/') {
        folder = state;
    } else if (home && home[0] == '/') {
        folder = std::string(home) + "/.local/state";
    } else {
        return {};
    }
    return folder + "/quorel/last-update-check";
}

std::optional<sys_seconds> LastCheckFile::read() const {
    std::ifstream file(_path);
    std::int64_t time = 0;
    // Nothing beyond the year 9999: calculations with the rest would overflow.
    constexpr std::int64_t kLatest = 253'402'300'799;
    if (!(file >> time) || time < 0 || time > kLatest) return {};
    return sys_seconds(seconds(time));
}

void LastCheckFile::write(sys_seconds time) const {
    if (_path.empty()) return;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), ignored);
    const std::string fresh = _path + ".new";
    {
        std::ofstream file(fresh, std::ios::trunc);
        file << time.time_since_epoch().count() << '\n';
        if (!file.flush()) return;
    }
    std::filesystem::rename(fresh, _path, ignored);
}

}  // namespace quorel
