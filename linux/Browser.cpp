#include "linux/Browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "kit/update/UpdateRecord.h"

namespace quorel {

bool openInBrowser(const std::string& address) {
    if (!isWebAddress(address)) return false;
    // xdg-open may stay as long as the browser does. In a session of its own it is nobody's child to wait for.
    std::string shell = "sh";
    std::string option = "-c";
    std::string script = "command -v xdg-open >/dev/null && exec setsid --fork xdg-open \"$1\"";
    std::string page = address;
    char* arguments[] = {shell.data(), option.data(), script.data(), shell.data(), page.data(), nullptr};

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    // A program that is started inherits which signals are blocked and which ignored. The browser is to begin as any
    // other does: with none blocked, and with those that this product's programs ignore at their defaults.
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
    const int result = posix_spawnp(&child, shell.c_str(), &files, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (result != 0) return false;
    int status = 0;
    pid_t ended;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    return ended < 0 || status == 0;  // whoever ignores the ends of his children does not learn how this one went
}

}  // namespace quorel
