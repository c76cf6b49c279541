#include "agent/Browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

#include "kit/update/UpdateRecord.h"

namespace quorel {

bool openInBrowser(const std::string& address) {
    if (!isWebAddress(address)) return false;
    std::string program = "xdg-open";
    std::string page = address;
    char* arguments[] = {program.data(), page.data(), nullptr};

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    // The browser is no part of this program: no signal that is blocked or ignored here is so there.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGCHLD);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    pid_t child = 0;
    const int result = posix_spawnp(&child, program.c_str(), &files, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return result == 0;
}

}  // namespace quorel
