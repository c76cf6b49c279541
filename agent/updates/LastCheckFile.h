#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace quorel {

/// Remembers across restarts when the last update check succeeded: seconds since 1970, as text.
class LastCheckFile {
public:
    explicit LastCheckFile(std::string path) : _path(std::move(path)) {}

    /// Below $XDG_STATE_HOME, or ~/.local/state; empty where the user has no home.
    static std::string defaultPath();

    /// Nothing when the file is missing or holds anything else.
    std::optional<std::chrono::sys_seconds> read() const;
    /// Best effort: what cannot be written is forgotten at the next start.
    void write(std::chrono::sys_seconds time) const;

private:
    std::string _path;
};

}  // namespace quorel
