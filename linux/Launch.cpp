#include "linux/Launch.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace quorel {

bool startProgram(std::vector<std::string> command) {
    // It may stay for hours. In a session of its own it is nobody's child to wait for.
    std::string shell = "sh";
    std::string option = "-c";
    std::string script = "command -v \"$1\" >/dev/null && exec setsid --fork \"$@\"";
    std::vector<char*> arguments = {shell.data(), option.data(), script.data(), shell.data()};
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    // A program that is started inherits which signals are blocked and which ignored. This one is to begin as any
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
    const int result = posix_spawnp(&child, shell.c_str(), &files, &attributes, arguments.data(), environ);
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
