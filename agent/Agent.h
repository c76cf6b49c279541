#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include "agent/DaemonLink.h"
#include "agent/DesktopHold.h"
#include "agent/UserActions.h"
#include "agent/idle/IdleMeter.h"
#include "agent/tray/MenuBarSetting.h"
#include "agent/tray/Tray.h"
#include "agent/updates/CheckInterval.h"
#include "agent/updates/LastCheckFile.h"
#include "agent/updates/Reports.h"
#include "agent/warning/Notifier.h"
#include "agent/warning/Warnings.h"
#include "kit/update/CurlUpdateChecker.h"
#include "linux/EventLoop.h"
#include "linux/bus/BusEndpoint.h"
#include "linux/pane/RootedPropertyListFiles.h"

namespace quorel {

/// The per-user agent: speaks to its user for the daemon, and to the daemon for its user; checks for updates when it is
/// told to and when a periodic check is due. All on one loop, one connection to the session bus and one to the system
/// bus, but for the check itself, which waits for the network on a thread of its own and is given up when the agent
/// ends.
class Agent {
public:
    struct Options {
        std::string root;  ///< in front of the preferences file's path
        CurlUpdateChecker::Settings updates;
    };

    /// Throws std::exception when there is no session bus. Call it before threads are started.
    explicit Agent(Options options);
    ~Agent();

    /// Returns the program's exit status: 0 when told to end, or when the user has an agent already.
    int run();

private:
    void received(const BusNotification& notification, const BusAnswer& answer);
    void checkIfDue();
    void checkByHand();
    void startCheck();
    void checkEnded();
    void daemonChanged();
    void say(const TrayContent::Choice& choice);
    void tellIdle(std::int64_t question);

    CurlUpdateChecker _checker;
    const std::string _root;
    const RootedPropertyListFiles _files;
    const LastCheckFile _lastCheckFile;
    CheckInterval _interval;
    Reports _reports;
    bool _askedByHand = false;  // somebody waits for the outcome of the check that runs

    EventLoop _loop;
    LoopTimer _nextCheck;
    const Nudge _checkEnded;
    const BusConnection _bus;
    Notifier _notifier;
    IdleMeter _idleMeter;
    DaemonLink _daemon;
    Warnings _warnings;
    DesktopHold _desktopHold;
    UserActions _actions;
    Tray _tray;
    std::optional<MenuBarSetting> _menuBar;  // once this is the user's agent
    LoopTimer _watch;                        // while the daemon wants to know at once that somebody uses the computer
    const BusEndpoint _endpoint;
    std::thread _check;  // joinable from its start to the end that is told of it
    std::atomic<bool> _succeeded = false;
};

}  // namespace quorel
