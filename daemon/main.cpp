// quorel-daemon [--root DIR]: keeps the preferences file, for whom polkit lets change it.

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "daemon/Daemon.h"
#include "kit/MOLLog.h"
#include "linux/JournalLog.h"

using namespace quorel;

namespace {

std::atomic<bool> busLost = false;

/// Served until told to end. The exit status.
int serve(std::string root, const sigset_t& ends) {
    Daemon daemon(std::move(root));
    std::string error;
    const auto lost = [] {
        busLost = true;
        kill(getpid(), SIGTERM);
    };
    if (!daemon.open(lost, error)) {
        MOLLog("The daemon cannot start: %s.", error.c_str());
        return EXIT_FAILURE;
    }
    MOLLog("The daemon serves.");
    int signal = 0;
    sigwait(&ends, &signal);
    MOLLog(busLost ? "The bus has gone." : "The daemon ends.");
    return busLost ? EXIT_FAILURE : EXIT_SUCCESS;  // the service manager starts it again after a failure
}

}  // namespace

int main(int count, char** arguments) {
    std::string root;
    if (count == 3 && arguments[1] == std::string_view("--root")) {
        root = arguments[2];
    } else if (count != 1) {
        std::fprintf(stderr, "Usage: quorel-daemon [--root DIR]\n");
        return 2;
    }
    installJournalLog("quorel-daemon");
    umask(022);
    std::signal(SIGPIPE, SIG_IGN);
    // Blocked before there are threads, so that the end comes to this one alone.
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    const int status = serve(std::move(root), ends);
    // Calls that still wait for polkit must not see globals go.
    std::fflush(nullptr);
    std::_Exit(status);
}
