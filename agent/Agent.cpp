#include "agent/Agent.h"

#include <csignal>
#include <system_error>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/SettingsEntry.h"
#include "linux/pane/Browser.h"
#include "model/Preferences.h"
#include "model/Wire.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

constexpr std::chrono::seconds kBetweenMeasurements{4};

CheckInterval::Time currentTime() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

void openPage(const std::string& page) {
    if (!openInBrowser(page)) MOLLog("No browser could be started for %s", page.c_str());
}

void logRefusal(const BusError& error) {
    if (error) MOLLog("The daemon refuses: %s", refusalText(error.name, error.message).c_str());
}

}  // namespace

Agent::Agent(Options options)
    : _checker(std::move(options.updates)),
      _root(options.root),
      _files(std::move(options.root)),
      _lastCheckFile(LastCheckFile::defaultPath()),
      _interval(_lastCheckFile.read()),
      _nextCheck(_loop, [this] { checkIfDue(); }),
      _checkEnded(_loop, [this] { checkEnded(); }),
      _bus(connectTo(Bus::Session, _loop)),
      _notifier(_bus.get(), openPage),
      _idleMeter(_loop, _bus.get(),
                 [this] {
                     if (_daemon.watchesUse()) _daemon.reportIdle(0, 0);
                 }),
      _daemon(_loop, {[this] { daemonChanged(); }, [this](std::int64_t question) { tellIdle(question); }}),
      _warnings(_loop, _bus.get(), _daemon),
      _desktopHold(_bus.get()),
      _actions(_bus.get(), [this](const auto&... report) { _daemon.reportAction(report...); }),
      _tray(_loop, {[this](const TrayContent::Choice& choice) { say(choice); }, [this] { checkByHand(); },
                    [] { return settingsEntry().has_value(); }, [] { openSettings(); }}),
      _watch(_loop, [this] { tellIdle(0); }),
      _endpoint(_bus.get(), [this](const auto& notification, const auto& answer) { received(notification, answer); }) {
    _loop.endOn({SIGTERM, SIGINT});
}

Agent::~Agent() {
    _checker.giveUp();
    if (_check.joinable()) _check.join();
}

int Agent::run() {
    // A desktop may start the agent in more than one way; whichever comes second has nothing to do or to say.
    if (!requestName(_bus.get(), std::string(kUserAgentName))) return 0;
    _menuBar.emplace(_loop, _root, [this](bool on) { _tray.show(on); });
    _nextCheck.start({});
    const int status = _loop.run();
    if (status != 0) MOLLog("The session bus has gone.");
    return status;
}

void Agent::daemonChanged() {
    _warnings.update();
    _actions.run(_daemon.actions());
    _desktopHold.keepAwake(_daemon.keepsAwake());
    if (_daemon.isThere())
        _tray.update(
            {_daemon.upcoming(), _daemon.pauses(), _daemon.maySkip(), _daemon.mayPostpone(), _daemon.mayPause()});
    else
        _tray.daemonHasGone();
    if (_daemon.watchesUse() && !_watch.isRunning()) _watch.start(kBetweenMeasurements);
}

void Agent::say(const TrayContent::Choice& choice) {
    using Choice = TrayContent::Choice;
    DaemonView& plan = _daemon.plan();
    if (choice.what == Choice::kSkip) plan.skip(choice.token, logRefusal);
    if (choice.what == Choice::kUnskip) plan.unskip(choice.token, logRefusal);
    if (choice.what == Choice::kPostpone) plan.postpone(choice.token, logRefusal, choice.length);
    if (choice.what == Choice::kPause) plan.pause(logRefusal);
    if (choice.what == Choice::kResume) plan.resume(choice.token, logRefusal);
}

void Agent::tellIdle(std::int64_t question) {
    _idleMeter.measure([this, question](std::optional<Seconds> idle) {
        _daemon.reportIdle(question, idle);
        if (_daemon.watchesUse()) _watch.start(kBetweenMeasurements);
    });
}

void Agent::received(const BusNotification& notification, const BusAnswer& answer) {
    if (notification.name != kUserAgentMustCheckUpdates || notification.object != kUserAgentName)
        return answer.refuse(wire::kUnknownNotification, "The agent takes UserAgentMustCheckUpdates alone.");
    answer.accept();
    checkByHand();
}

void Agent::checkByHand() {
    _askedByHand = true;  // of a check that runs already, too
    if (!_check.joinable()) startCheck();
}

void Agent::checkIfDue() {
    const auto now = currentTime();
    _menuBar->readAgain();
    if (!_check.joinable()) {
        _interval.setPreferences(_files.dictionaryWithContentsOfFile(preferences::kFile));
        if (_interval.isDue(now)) startCheck();
    }
    _nextCheck.start(_check.joinable() ? CheckInterval::kLookInterval : _interval.timeToNextLook(now));
}

void Agent::startCheck() try {
    _succeeded = false;
    _check = std::thread([this] {
        _succeeded = _checker.updateLatestVersionDictionary();
        _checkEnded.give();
    });
} catch (const std::system_error&) {  // the system has no thread to give
    _checkEnded.give();
}

void Agent::checkEnded() {
    if (_check.joinable()) _check.join();
    const bool succeeded = _succeeded;
    const auto now = currentTime();
    _interval.checkEnded(now, succeeded);
    if (succeeded) _lastCheckFile.write(now);
    if (auto message = _reports.report(_checker, succeeded, std::exchange(_askedByHand, false)))
        _notifier.show(std::move(*message));
    _nextCheck.start(_interval.timeToNextLook(now));
}

}  // namespace quorel
