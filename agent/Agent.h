#pragma once

#include <systemd/sd-event.h>

#include <chrono>
#include <memory>
#include <string>

#include "agent/CheckSchedule.h"
#include "agent/LastCheckFile.h"
#include "agent/Notifier.h"
#include "agent/Reports.h"
#include "kit/update/CurlUpdateChecker.h"
#include "linux/BusEndpoint.h"
#include "linux/RootedPropertyListFiles.h"

namespace quorel {

/// The per-user agent: answers pings, checks for updates when it is told to and when a periodic check is due, and
/// tells the user. The thread that runs it does all but two things: pings are answered on the endpoint's thread, and
/// each check has one of its own.
class Agent {
public:
    struct Options {
        std::string root;  ///< in front of the preferences file's path
        CurlUpdateChecker::Settings updates;
    };

    explicit Agent(Options options);
    ~Agent();

    /// Returns the program's exit status: 0 after SIGTERM or SIGINT. Both must be blocked in every thread.
    int run();
    /// A check goes on after the run has ended, until its time is over.
    bool isChecking() const { return _checking; }

private:
    struct Shared;
    using EventLoop = std::unique_ptr<sd_event, decltype(&sd_event_unref)>;
    using EventSource = std::unique_ptr<sd_event_source, decltype(&sd_event_source_disable_unref)>;

    /// Nothing on success, otherwise the reason.
    std::string open();
    std::string openEndpoint();
    void wokenUp();
    void look();
    void startCheck();
    void checkEnded(bool succeeded);
    void lookAgain(std::chrono::seconds after);

    const std::shared_ptr<Shared> _shared;
    const RootedPropertyListFiles _files;
    const LastCheckFile _lastCheckFile;
    CheckSchedule _schedule;
    Reports _reports;
    bool _checking = false;
    bool _askedByHand = false;  // somebody waits for the outcome of the check that runs

    EventLoop _loop{nullptr, sd_event_unref};
    EventSource _timer{nullptr, sd_event_source_disable_unref};
    Notifier _notifier;
    std::unique_ptr<BusEndpoint> _endpoint;
};

}  // namespace quorel
