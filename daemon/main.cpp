// quorel-daemon [--root DIR]: keeps the preferences file, for whom polkit lets change it, and carries the Schedules
// out. Below a folder of its own it touches nothing of the computer, logind and the service manager included.

#include <malloc.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "daemon/Daemon.h"
#include "kit/MOLLog.h"
#include "linux/JournalLog.h"

int main(int count, char** arguments) try {
    std::string root;
    if (count == 3 && arguments[1] == std::string_view("--root")) {
        root = arguments[2];
    } else if (count != 1) {
        std::fprintf(stderr, "Usage: quorel-daemon [--root DIR]\n");
        return 2;
    }
    quorel::installJournalLog("quorel-daemon");
    umask(022);
    std::signal(SIGPIPE, SIG_IGN);
    // Once a large message has gone, the allocator would keep such sizes for itself rather than give them back.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    // The zone is the system's, which may change.
    if (root.empty()) unsetenv("TZ");
    const quorel::Clocks clocks;
    using Touches = quorel::Daemon::Touches;
    return quorel::Daemon(root, clocks, root.empty() ? Touches::kAll : Touches::kNothing).run();
} catch (const std::exception& exception) {
    quorel::MOLLog("The daemon cannot start: %s.", exception.what());
    return EXIT_FAILURE;
}
