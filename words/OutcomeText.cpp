#include "words/OutcomeText.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "model/Dictionary.h"
#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using namespace outcome;

/// A code and what it says.
struct Text {
    std::string_view code;
    const char* text;
};

/// Tells those who collect the texts; it is translated when it is shown.
constexpr const char* marked(const char* text) {
    return text;
}

constexpr Text kCauses[] = {
    {kCauseOff, marked("the computer was off")},
    {kCauseAsleep, marked("the computer was asleep")},
    {kCauseDaemon, marked("the daemon was not running")},
    {kCauseClock, marked("the clock was set forward past it")},
    {kCauseLate, marked("the computer did not get to it in time")},
};

constexpr Text kOvertakers[] = {
    {kSleep, marked("the computer went to sleep before")},
    {kDown, marked("the computer went down before")},
    {kNext, marked("the next sleep, shut-down or wake-up came")},
    {kOther, marked("the system was doing so already")},
    {kFirst, marked("another sleep or shut-down was waiting already")},
};

constexpr Text kReasons[] = {
    {kNoAnswer, marked("the system did not answer")},
    {kStayedAwake, marked("the system agreed, and the computer stayed awake")},
    {kKindDenied, marked("this computer does not have that kind of sleep")},
    {kUnwritten, marked("that it begins could not be stored")},
    {kNobody, marked("nobody is at the computer")},
    {kNoAgent, marked("the agent of the user at the computer is not running")},
    {kTooMany, marked("too many actions of the user are running")},
    {kNoManager, marked("there is no service manager to run it")},
    {kNoModule, marked("its module is no longer there")},
    {kNoProgram, marked("its program could not be executed")},
    {kNoSandbox, marked("what it runs in could not be set up")},
    {kSignal, marked("ended by a signal")},
    {kMemory, marked("it took more memory than it may")},
};

constexpr Text kFaults[] = {
    {wire::schedule_fault::kHour, marked("its hour is not between 0 and 23")},
    {wire::schedule_fault::kMinute, marked("its minute is not between 0 and 59")},
    {wire::schedule_fault::kDays, marked("no day is chosen")},
    {wire::schedule_fault::kAction, marked("there is no such action")},
    {wire::schedule_fault::kProgram, marked("its module has nothing to run")},
    {wire::schedule_fault::kUntil, marked("the time of day at which it ends is none, or that at which it begins")},
    {wire::schedule_fault::kSleepKind, marked("there is no such kind of sleep")},
    {wire::schedule_fault::kDenied, marked("this computer does not have that kind of sleep")},
    {wire::trial_fault::kWakeUp, marked("a wake-up is not tried")},
    {wire::trial_fault::kNotNow, marked("not at this moment")},
    {wire::trial_fault::kPaused, marked("there is a pause")},
};

constexpr Text kPauseFaults[] = {
    {wire::pause_fault::kPast, marked("it would end before it begins, or has ended already")},
    {wire::pause_fault::kTooFar, marked("it may end 366 days ahead at most")},
    {wire::pause_fault::kTooMany, marked("sixteen others are set")},
    {wire::pause_fault::kNotNow, marked("not at this moment")},
};

/// The outcomes that say all without arguments.
constexpr Text kPlain[] = {
    {kWokeUp, marked("woke up")},
    {kStarted, marked("started up")},
    {kAwakeAlready, marked("was awake already; kept awake for ten minutes")},
    {kUnknown, marked("begun; how it ended is not known")},
    {kWithdrawn, marked("withdrawn: its schedule was changed or deleted")},
    {kClockCorrected, marked("ended: the clock was corrected")},
    {kStateLost, marked("what was stored about the schedules could not be read; begun anew")},
    {kBackToSleep, marked("woken for nothing; put back to sleep")},
};

/// The outcomes that say why something was not done.
constexpr Text kPrevented[] = {
    {kSameMinute, marked("another sleep or shut-down had the same minute")},
    {kWakesThen, marked("the computer was to wake up in the same minute")},
    {kLidClosed, marked("the lid is closed, and there is no external power")},
};

/// Null for a code that the list does not have.
template <std::size_t kSize>
const char* textIn(const Text (&texts)[kSize], std::string_view code) {
    for (const Text& one : texts)
        if (one.code == code) return translated(one.text);
    return nullptr;
}

template <std::size_t kSize>
std::string textOrCode(const Text (&texts)[kSize], const std::string& code) {
    const char* text = textIn(texts, code);
    return text ? text : code;
}

std::string plain(const Value& dictionary, std::string_view key) {
    return plainText(dictionary[key].text());
}

std::string joined(const std::string& first, const std::string& second) {
    if (first.empty() || second.empty()) return first + second;
    return filled(translated("{1}: {2}"), {first, second});
}

/// The keys are those of an outcome's arguments and of an occurrence to come.
std::string holdText(const Value& held) {
    const std::string kind = plain(held, keys::kHold);
    const std::string who = plain(held, keys::kWho);
    const std::string why = plain(held, keys::kWhy);
    if (kind == kHoldAction) return filled(translated("{1} under way"), {actionName(who)});
    if (kind == kHoldShutdown) return filled(translated("a shut-down is planned ({1})"), {who});
    if (kind == kHoldUse && who.empty()) return translated("used a short while ago");
    if (kind == kHoldUse && why == kUntold) return filled(translated("in use by {1}, as far as can be told"), {who});
    if (kind == kHoldUse) return filled(translated("in use by {1}"), {who});
    if (kind == kHoldUnknown)
        return joined(translated("it is not known what speaks against it"), textOrCode(kReasons, why));
    return joined(who, why);
}

std::string notDone(const std::string& action, const std::string& why) {
    if (action == schedule_keys::kSleepType) return filled(translated("not put to sleep: {1}"), {why});
    if (action == schedule_keys::kWakeUpType) return filled(translated("not woken up: {1}"), {why});
    if (action == schedule_keys::kShutDownType) return filled(translated("not shut down: {1}"), {why});
    return filled(translated("not run: {1}"), {why});
}

std::string missedText(const Value& arguments) {
    const std::string cause = textOrCode(kCauses, plain(arguments, keys::kCause));
    const std::int64_t count = std::max<std::int64_t>(arguments[keys::kCount].integer(), 1);
    return filled(translatedCount("missed: {2}", "missed {1} times: {2}", count), {std::to_string(count), cause});
}

std::string failedText(const Value& arguments) {
    const std::string reason = textOrCode(kReasons, plain(arguments, keys::kReason));
    const std::string text =
        filled(translated("failed with status {1} after {2}"),
               {std::to_string(arguments[keys::kStatus].integer()), durationText(arguments[keys::kSeconds].integer())});
    return joined(text, reason);
}

std::string correctionText(Seconds by) {
    if (by == 0) return translated("the clock was corrected");
    return filled(by > 0 ? translated("the clock was set forward by {1}") : translated("the clock was set back by {1}"),
                  {durationText(by)});
}

std::string keptAwakeText(const Value& arguments) {
    const std::string until = timeText(arguments[keys::kUntil].integer());
    const std::string by = plain(arguments, keys::kBy);
    if (by.empty()) return filled(translated("kept awake until {1}"), {until});
    return filled(translated("kept awake until {1}, when {2} let it sleep"), {until, by});
}

std::string pausedText(const Value& arguments) {
    const std::int64_t count = arguments[keys::kCount].integer();
    return filled(translated("paused from {2} to {3} by {4}: {1} left out"),
                  {std::to_string(count), momentText(arguments[keys::kFrom].integer()),
                   momentText(arguments[keys::kUntil].integer()), plain(arguments, keys::kBy)});
}

}  // namespace

std::string actionName(const std::string& actionType, bool restarts) {
    if (actionType == schedule_keys::kSleepType) return translated("Sleep");
    if (actionType == schedule_keys::kWakeUpType) return translated("Wake Up");
    if (actionType == schedule_keys::kShutDownType) return restarts ? translated("Restart") : translated("Shut Down");
    const std::string name = plainText(actionType.substr(actionType.rfind('.') + 1));
    return name.empty() ? plainText(actionType) : name;
}

std::string actionName(const Value& told) {
    const Value& names = told[keys::kNames];
    const std::string& action = told[keys::kAction].text();
    const bool isOurs = action == schedule_keys::kSleepType || action == schedule_keys::kWakeUpType ||
                        action == schedule_keys::kShutDownType;
    if (isOurs || names.dictionary().size() == 0) return actionName(action, told[keys::kRestart].intValue() != 0);
    for (const std::string& language : {usersLanguage(), std::string("en"), names.dictionary().keyAt(0)})
        if (std::string name = plain(names, language); !name.empty()) return name;
    return actionName(action);
}

std::string outcomeText(const Value& outcome) {
    const std::string code = plain(outcome, keys::kCode);
    const std::string& action = outcome[keys::kAction].text();
    const Value& arguments = outcome[keys::kArguments];
    const auto length = [&] { return durationText(arguments[keys::kSeconds].integer()); };
    if (const char* text = textIn(kPlain, code)) return text;
    if (const char* why = textIn(kPrevented, code)) return notDone(action, why);
    if (code == kSlept) return filled(translated("slept until {1}"), {momentText(arguments[keys::kUntil].integer())});
    if (code == kKeptAwake) return keptAwakeText(arguments);
    if (code == kShutDown)
        return arguments[keys::kRestart].intValue() ? translated("restarted") : translated("shut down");
    if (code == kRan && arguments[keys::kMadeUp].intValue())
        return filled(translated("made up for, in {1}"), {length()});
    if (code == kRan) return filled(translated("done in {1}"), {length()});
    if (code == kFailed) return failedText(arguments);
    if (code == kTimedOut) return filled(translated("ended at its limit, after {1}"), {length()});
    if (code == kNotStarted) {
        return joined(translated("could not be started"), textOrCode(kReasons, plain(arguments, keys::kReason)));
    }
    if (code == kMissed) return missedText(arguments);
    if (code == kSkipped) return filled(translated("skipped by {1}"), {plain(arguments, keys::kBy)});
    if (code == kOvertaken) return notDone(action, textOrCode(kOvertakers, plain(arguments, keys::kBy)));
    if (code == kGaveUp) {
        const std::string waited = durationText(arguments[keys::kMinutes].integer() * kMinute);
        return notDone(action, filled(translated("{1} (waited {2})"), {holdText(arguments), waited}));
    }
    if (code == kRefused) {
        const std::string reason = textOrCode(kReasons, plain(arguments, keys::kReason));
        return notDone(action, joined(translated("refused"), reason));
    }
    if (code == kCorrection) return correctionText(arguments[keys::kBy].integer());
    if (code == kPaused) return pausedText(arguments);
    if (code == kClockBehind)
        return filled(translated("the clock is {1} behind; nothing runs until it is set, or for ten minutes"),
                      {durationText(arguments[keys::kBy].integer())});
    if (code == kCannotRun) return faultText(Value(arguments).with(keys::kAction, outcome[keys::kAction]));
    return code;
}

std::string outcomeLine(const Value& outcome) {
    const std::int64_t due = outcome[keys::kDue].integer();
    if (due == 0) return outcomeText(outcome);
    return filled(translated("{1} of {2}: {3}"), {actionName(outcome), momentText(due), outcomeText(outcome)});
}

std::string stepText(const Value& upcoming) {
    const std::string step = plain(upcoming, keys::kStep);
    const std::string by = plain(upcoming, keys::kBy);
    if (step == wire::step::kPlanned) return {};
    if (step == wire::step::kSkipped) return filled(translated("skipped by {1}"), {by});
    if (step == wire::step::kPostponed)
        return filled(translated("postponed by {1}, planned for {2}"), {by, timeText(upcoming[keys::kDue].integer())});
    if (step == wire::step::kMakeUp) return translated("missed, and to be made up for");
    if (step == wire::step::kAwaited) return translated("waits for somebody to log in, until then");
    if (step == wire::step::kQueued) return translated("about to begin");
    if (step == wire::step::kRunning && upcoming[keys::kUntil].isPresent())
        return filled(translated("kept awake until {1}"), {timeText(upcoming[keys::kUntil].integer())});
    if (step == wire::step::kRunning) return translated("running");
    if (step == wire::step::kLooking || step == wire::step::kChecking)
        return translated("looking whether anything speaks against it");
    if (step == wire::step::kWaiting) return filled(translated("held up: {1}"), {holdText(upcoming)});
    if (step == wire::step::kWarned) return translated("announced");
    if (step == wire::step::kActing) return translated("the system was asked for it");
    return step;
}

std::string pauseText(const Value& pause, Instant now) {
    const Instant from = pause[keys::kFrom].integer();
    const std::string until = momentText(pause[keys::kUntil].integer()), by = plain(pause, keys::kBy);
    if (from <= now) return filled(translated("until {1}, by {2}"), {until, by});
    return filled(translated("from {1} to {2}, by {3}"), {momentText(from), until, by});
}

std::string refusalText(const std::string& error, const std::string& text) {
    if (error == wire::kNoSuchOccurrence)
        return translated("There is no such occurrence any more. \"quorelctl next\" shows what there is.");
    if (error == wire::kNotAuthorized) return translated("This is not permitted without an administrator.");
    if (error == wire::kTooManyChanges) return translated("More than ten changes a minute are not taken.");
    if (error == wire::kNoSuchPause) return translated("There is no such pause any more.");
    if (error == wire::kCannotPause)
        return filled(translated("Not paused: {1}."), {textOrCode(kPauseFaults, plainText(text))});
    if (error == wire::kCannotTry) return filled(translated("Not tried: {1}."), {textOrCode(kFaults, plainText(text))});
    return filled(translated("The daemon refused: {1}"), {plainText(text.empty() ? error : text)});
}

std::string faultReasonText(const std::string& reason) {
    return textOrCode(kFaults, reason);
}

std::string faultText(const Value& fault) {
    return filled(translated("schedule {1} ({2}) does not run: {3}"),
                  {std::to_string(fault[keys::kNumber].integer()), actionName(fault),
                   faultReasonText(plain(fault, keys::kReason))});
}

}  // namespace quorel
