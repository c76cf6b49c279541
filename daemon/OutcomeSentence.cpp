#include "daemon/OutcomeSentence.h"

#include <ctime>
#include <string_view>
#include <utility>

#include "model/Schedule.h"

namespace quorel {

namespace {

std::string timeOf(Instant instant) {
    const std::time_t time = instant;
    std::tm local{};
    char text[32];
    if (!localtime_r(&time, &local) || std::strftime(text, sizeof text, "%F %H:%M", &local) == 0) return "?";
    return text;
}

std::string nameOf(const std::string& action) {
    if (action == schedule_keys::kSleepType) return "Sleep";
    if (action == schedule_keys::kWakeUpType) return "Wake-up";
    if (action == schedule_keys::kShutDownType) return "Shut-down";
    return action;
}

std::string notDone(const std::string& action) {
    if (action == schedule_keys::kSleepType) return "not put to sleep";
    if (action == schedule_keys::kShutDownType) return "not shut down";
    return "not carried out";
}

/// The words for a code, or the code itself where it is somebody's text.
std::string wordsOf(std::string_view code) {
    constexpr std::pair<std::string_view, const char*> kWords[] = {
        {outcome::kCauseOff, "the computer was off"},
        {outcome::kCauseAsleep, "the computer slept"},
        {outcome::kCauseDaemon, "the daemon did not run"},
        {outcome::kCauseClock, "the clock was set on"},
        {outcome::kCauseLate, "the computer was too slow"},
        {outcome::kSleep, "the computer went to sleep by itself"},
        {outcome::kDown, "the computer went down by itself"},
        {outcome::kNext, "the next sleep, shut-down or wake-up was due"},
        {outcome::kOther, "another sleep or shut-down was under way"},
        {outcome::kNoAnswer, "the system did not answer"},
        {outcome::kStayedAwake, "the system agreed, but the computer stayed awake"},
        {"hour", "there is no such hour"},
        {"minute", "there is no such minute"},
        {"action", "there is no such action"},
        {"program", "its module has nothing to run"},
    };
    for (const auto& [known, words] : kWords)
        if (code == known) return words;
    return std::string(code);
}

std::string heldBy(std::string_view hold, const std::string& who, const std::string& why) {
    if (hold == outcome::kHoldAction) return nameOf(who) + " was running";
    if (hold == outcome::kHoldShutdown) return "somebody has scheduled a " + who;
    if (hold == outcome::kHoldUse) return (who.empty() ? "the computer" : who) + " was in use";
    if (hold == outcome::kHoldUnknown) return "what might speak against it is not known: " + wordsOf(why);
    return who + ": " + why;
}

std::string whatHappened(const Outcome& outcome) {
    const Value arguments = outcome.arguments;
    const std::string& code = outcome.code;
    const auto number = [&](const char* key) { return std::to_string(arguments[key].integer()); };
    const auto text = [&](const char* key) { return arguments[key].text(); };
    const auto isSet = [&](const char* key) { return arguments[key].intValue() != 0; };

    if (code == outcome::kSlept) return "slept until " + timeOf(arguments["Until"].integer());
    if (code == outcome::kShutDown) return isSet("Restart") ? "restarted" : "shut down";
    if (code == outcome::kWokeUp) return "woke the computer";
    if (code == outcome::kStarted) return "started the computer";
    if (code == outcome::kAwakeAlready) return "the computer was awake already";
    if (code == outcome::kRan) return (isSet("MadeUp") ? "made up, in " : "done, in ") + number("Seconds") + " s";
    if (code == outcome::kFailed)
        return "failed after " + number("Seconds") + " s with status " + number("Status") +
               (text("Reason").empty() ? "" : ": " + text("Reason"));
    if (code == outcome::kTimedOut) return "ended at its limit of " + number("Seconds") + " s";
    if (code == outcome::kNotStarted) return "not started: " + text("Reason");
    if (code == outcome::kUnknown) return "begun; how it ended is not known";
    if (code == outcome::kMissed)
        return (arguments["Count"].integer() > 1 ? "missed for the last of " + number("Count") + " times: "
                                                 : "missed: ") +
               wordsOf(text("Cause"));
    if (code == outcome::kSkipped) return "skipped by " + text("By");
    if (code == outcome::kSameMinute) return notDone(outcome.action) + ": another one has that minute";
    if (code == outcome::kWakesThen) return notDone(outcome.action) + ": it wakes up in that minute";
    if (code == outcome::kWithdrawn) return "withdrawn: its Schedule is no more";
    if (code == outcome::kGaveUp)
        return notDone(outcome.action) + ": " + heldBy(text("Hold"), text("Who"), text("Why")) + " (waited " +
               number("Minutes") + " minutes)";
    if (code == outcome::kOvertaken) return notDone(outcome.action) + ": " + wordsOf(text("By"));
    if (code == outcome::kRefused) return notDone(outcome.action) + ": " + wordsOf(text("Reason"));
    if (code == outcome::kLidClosed) return "not carried out: the lid is closed and there is no external power";
    if (code == outcome::kClockCorrected) return "ended: the clock was corrected";
    if (code == outcome::kCorrection) return "The clock was corrected by " + number("By") + " s; nothing is made up";
    if (code == outcome::kStateLost) return "The stored state cannot be read; Schedules run from now on";
    if (code == outcome::kClockBehind)
        return "The clock is " + number("By") + " s behind; nothing runs until it is set";
    if (code == outcome::kBackToSleep) return "Woken for nothing; the computer is to sleep again";
    if (code == outcome::kCannotRun) return "Schedule " + number("Number") + " cannot run: " + wordsOf(text("Reason"));
    return code;
}

}  // namespace

std::string sentenceOf(const Outcome& outcome) {
    if (outcome.due == 0) return whatHappened(outcome) + ".";
    return nameOf(outcome.action) + " of " + timeOf(outcome.due) + ": " + whatHappened(outcome) + ".";
}

}  // namespace quorel
