#include "linux/pane/EndOfProcess.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <thread>
#include <utility>

namespace quorel {

namespace {

constexpr std::chrono::seconds kPatience{2};  // of whoever logs out

std::function<void()> beforeEnd;
std::atomic<bool> begun{false};
std::atomic<int> received{0};
int wakeup = -1;

void doLastThings() {
    if (begun.exchange(true)) return;
    beforeEnd();
}

/// A signal that comes now is not waited for; neither is what takes longer.
void endSoon(int signal) {
    std::thread([signal] {
        std::this_thread::sleep_for(kPatience);
        _exit(128 + signal);
    }).detach();
}

void onSignal(int signal) {
    received = signal;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeup, &one, sizeof one);
}

void serveSignals(DispatchQueue& mainQueue) {
    std::uint64_t count = 0;
    while (read(wakeup, &count, sizeof count) < 0) {
    }
    const int signal = received;
    endSoon(signal);
    mainQueue.sync(doLastThings);
    std::signal(signal, SIG_DFL);
    kill(getpid(), signal);
}

}  // namespace

void beforeTheEnd(DispatchQueue& mainQueue, std::function<void()> last) {
    beforeEnd = std::move(last);
    std::atexit([] {
        if (!begun) endSoon(0);
        doLastThings();
    });
    wakeup = eventfd(0, EFD_CLOEXEC);
    std::thread([&mainQueue] { serveSignals(mainQueue); }).detach();
    for (const int signal : {SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = onSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace quorel
