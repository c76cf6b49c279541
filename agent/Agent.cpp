#include "agent/Agent.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/Browser.h"
#include "model/Names.h"
#include "model/Preferences.h"

namespace quorel {

namespace {

CheckSchedule::Time currentTime() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

}  // namespace

/// What the other threads have to say to the agent's own. Lives as long as any of them may speak.
struct Agent::Shared {
    explicit Shared(CurlUpdateChecker::Settings settings)
        : checker(std::move(settings)), wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Shared() {
        if (wakeUp >= 0) close(wakeUp);
    }

    void say(std::atomic<bool>& what) const {
        what = true;
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto size = write(wakeUp, &one, sizeof one);
    }
    void listen() const {
        std::uint64_t count;
        [[maybe_unused]] const auto size = read(wakeUp, &count, sizeof count);
    }

    CurlUpdateChecker checker;
    const int wakeUp;
    std::atomic<bool> asked = false;
    std::atomic<bool> succeeded = false;
    std::atomic<bool> failed = false;
    std::atomic<bool> busLost = false;
};

Agent::Agent(Options options)
    : _shared(std::make_shared<Shared>(std::move(options.updates))),
      _files(std::move(options.root)),
      _lastCheckFile(LastCheckFile::defaultPath()),
      _schedule(_lastCheckFile.read()),
      _reports(textsForLocale(messagesLocale())),
      _notifier([](const std::string& page) {
          if (!openInBrowser(page)) MOLLog("No browser could be started for %s", page.c_str());
      }) {}

Agent::~Agent() = default;

int Agent::run() {
    if (const auto error = open(); !error.empty()) {
        MOLLog("Cannot start: %s.", error.c_str());
        return 1;
    }
    const int status = sd_event_loop(_loop.get());
    return status < 0 ? 1 : status;
}

std::string Agent::open() {
    if (_shared->wakeUp < 0) return std::strerror(errno);
    sd_event* loop = nullptr;
    int result = sd_event_new(&loop);
    if (result < 0) return std::strerror(-result);
    _loop.reset(loop);

    const auto woken = [](sd_event_source*, int, std::uint32_t, void* self) {
        static_cast<Agent*>(self)->wokenUp();
        return 0;
    };
    const auto timeToLook = [](sd_event_source*, std::uint64_t, void* self) {
        static_cast<Agent*>(self)->look();
        return 0;
    };
    sd_event_source* timer = nullptr;
    result = sd_event_add_io(loop, nullptr, _shared->wakeUp, EPOLLIN, woken, this);
    // A computer that sleeps misses no look; whatever is late is looked at on awaking.
    if (result >= 0) result = sd_event_add_time(loop, &timer, CLOCK_BOOTTIME, 0, 0, timeToLook, this);
    _timer.reset(timer);
    // Without a handler of its own, a signal ends the loop with status 0.
    for (const int signal : {SIGTERM, SIGINT})
        if (result >= 0) result = sd_event_add_signal(loop, nullptr, signal, nullptr, nullptr);
    if (result < 0) return std::strerror(-result);

    if (auto error = _notifier.attach(loop); !error.empty()) return error;
    return openEndpoint();
}

std::string Agent::openEndpoint() {
    BusEndpoint::Options options;
    options.bus = Bus::Session;
    options.name = kUserAgentName;
    options.handler = [shared = _shared](const BusNotification& notification, const BusAnswer& answer) {
        if (notification.name != kUserAgentMustCheckUpdates || notification.object != kUserAgentName)
            return answer.refuse(wire::kUnknownNotification, "The agent takes UserAgentMustCheckUpdates alone.");
        shared->say(shared->asked);
        answer.accept();
    };
    options.lost = [shared = _shared] { shared->say(shared->busLost); };
    std::string error;
    _endpoint = BusEndpoint::open(std::move(options), error);
    return error;
}

void Agent::wokenUp() {
    _shared->listen();
    if (_shared->busLost) {
        MOLLog("The session bus has gone.");
        sd_event_exit(_loop.get(), 1);
        return;
    }
    if (_shared->succeeded.exchange(false)) checkEnded(true);
    if (_shared->failed.exchange(false)) checkEnded(false);
    if (_shared->asked.exchange(false)) {
        _askedByHand = true;  // of a check that runs already, too
        if (!_checking) startCheck();
    }
}

void Agent::look() {
    const auto now = currentTime();
    if (!_checking) {
        _schedule.setPreferences(_files.dictionaryWithContentsOfFile(preferences::kFile));
        if (_schedule.isDue(now)) startCheck();
    }
    lookAgain(_checking ? CheckSchedule::kLookInterval : _schedule.timeToNextLook(now));
}

void Agent::startCheck() try {
    std::thread([shared = _shared] {
        const bool succeeded = shared->checker.updateLatestVersionDictionary();
        shared->say(succeeded ? shared->succeeded : shared->failed);
    }).detach();
    _checking = true;
} catch (const std::system_error&) {
    checkEnded(false);
}

void Agent::checkEnded(bool succeeded) {
    _checking = false;
    const auto now = currentTime();
    _schedule.checkEnded(now, succeeded);
    if (succeeded) _lastCheckFile.write(now);
    if (auto message = _reports.report(_shared->checker, succeeded, std::exchange(_askedByHand, false)))
        _notifier.show(std::move(*message));
    lookAgain(_schedule.timeToNextLook(now));
}

void Agent::lookAgain(std::chrono::seconds after) {
    const auto delay = std::chrono::duration_cast<std::chrono::microseconds>(after).count();
    sd_event_source_set_time_relative(_timer.get(), static_cast<std::uint64_t>(delay));
    sd_event_source_set_enabled(_timer.get(), SD_EVENT_ONESHOT);
}

}  // namespace quorel
