// quorel-run-module PROGRAM: runs a module's program, and lets 64 KiB of what it writes through to the journal. The
// main process of the module's transient unit, in the same sandbox: the daemon may be restarted meanwhile. Ends with
// the program's status; with 203, as systemd has it, when the program could not be executed.

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kMostOutput = std::size_t{64} * 1024;
constexpr int kCannotExecute = 203;
constexpr const char kCut[] = "\n[Quorel: the rest of the output is left out.]\n";

/// Without a journal there is nobody to tell.
void put(const char* bytes, std::size_t size) {
    if (write(STDOUT_FILENO, bytes, size) < 0) return;
}

/// Passes on what there is to read; false at the end. What is too much is read too: nobody is to wait for a reader.
bool passOn(int from, std::size_t& passed) {
    std::array<char, 4096> bytes;
    const ssize_t got = read(from, bytes.data(), bytes.size());
    if (got <= 0) return got < 0 && errno == EINTR;
    const auto size = static_cast<std::size_t>(got);
    const std::size_t kept = std::min(size, kMostOutput - std::min(passed, kMostOutput));
    put(bytes.data(), kept);
    if (kept < size && passed <= kMostOutput) put(kCut, sizeof kCut - 1);
    passed = std::min(passed + size, kMostOutput + 1);
    return true;
}

int execute(char* program, int output) {
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    char* arguments[] = {program, nullptr};
    execv(program, arguments);
    std::fprintf(stderr, "%s: %s\n", program, std::strerror(errno));
    return kCannotExecute;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0) return EXIT_FAILURE;
    const pid_t child = fork();
    if (child == 0) _exit(execute(arguments[1], output[1]));
    close(output[1]);
    const int process = child < 0 ? -1 : static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    if (process < 0) return EXIT_FAILURE;

    std::size_t passed = 0;
    std::array<pollfd, 2> watched = {{{output[0], POLLIN, 0}, {process, POLLIN, 0}}};
    // Of what the program has left running when it ended, nothing is waited for.
    for (bool ended = false;;) {
        if (poll(watched.data(), watched.size(), ended ? 0 : -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        if (watched[0].revents != 0 && !passOn(output[0], passed)) watched[0] = {-1, 0, 0};
        if (ended && (watched[0].revents == 0 || passed > kMostOutput)) break;
        ended = ended || watched[1].revents != 0;
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFSIGNALED(status)) return WEXITSTATUS(status);
    signal(WTERMSIG(status), SIG_DFL);
    raise(WTERMSIG(status));
    return EXIT_FAILURE;
}
