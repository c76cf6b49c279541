#include "ctl/PasswordAgent.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-login.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>

#include "linux/FileDescriptor.h"

namespace quorel {

namespace {

constexpr const char* kProgram = "pkttyagent";
constexpr std::chrono::milliseconds kPatience{10'000};

}  // namespace

PasswordAgent::PasswordAgent() {
    if (geteuid() == 0 || !isatty(STDIN_FILENO) || !isatty(STDERR_FILENO)) return;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    const FileDescriptor registered(ends[0]);
    FileDescriptor told(ends[1]);
    const std::string file = std::to_string(told.get());
    const pid_t parent = getpid();
    _process = fork();
    if (_process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(1);
        fcntl(told.get(), F_SETFD, 0);
        dup2(STDERR_FILENO, STDOUT_FILENO);  // what is asked is no part of the output
        // It serves the process that has started it. A session's own agent comes first; outside of sessions polkit
        // would not even find one that stands back.
        char* session = nullptr;
        const char* fallback = sd_pid_get_session(0, &session) < 0 ? nullptr : "--fallback";
        execlp(kProgram, kProgram, "--notify-fd", file.c_str(), fallback, nullptr);
        _exit(1);
    }
    // It closes its end when it is ready, and when it cannot be.
    told.close();
    pollfd event{registered.get(), POLLIN, 0};
    poll(&event, 1, static_cast<int>(kPatience.count()));
}

PasswordAgent::~PasswordAgent() {
    if (_process <= 0) return;
    kill(_process, SIGTERM);
    kill(_process, SIGCONT);
    waitpid(_process, nullptr, 0);
}

}  // namespace quorel
