#pragma once

#include <optional>
#include <string>

#include "scheduler/Instant.h"

namespace quorel {

/// The alarm of the computer's hardware clock, which starts a computer that is off. There is one, and everybody may
/// write it: an earlier one of somebody else's stays. The clock may run in local time or be wrong, so instants are
/// written relative to what it shows.
class StartupAlarm {
public:
    /// `clock` is the kernel's folder for it. `note` is a file that outlives the program, and says which alarm is ours.
    StartupAlarm(std::string clock, std::string note);

    /// Whether there is such a clock with an alarm.
    bool exists() const;

    enum class Result {
        kDone,
        kAbsent,    ///< no hardware clock, or one without an alarm
        kPast,      ///< in the past or too close to be met
        kTooFar,    ///< further ahead than this clock can be set, which may be a day
        kTaken,     ///< somebody else's earlier alarm stays; see `others`
        kReplaced,  ///< done; somebody else's later alarm was replaced
        kFailed,    ///< see `reason`
    };
    struct Setting {
        Result result = Result::kDone;
        std::optional<Instant> others;  ///< somebody else's alarm, as this computer's clock will show it
        std::string reason;
    };
    /// In place of ours; none takes ours away and leaves others'.
    Setting set(std::optional<Instant> at, Instant now);

    /// When ours comes, by this computer's clock; nothing where it is not set, or not any more.
    std::optional<Instant> comes(Instant now) const;

    /// Whether it can be set further ahead than a day, which tells that of wake alarms too. Tries it where the alarm is
    /// free or ours, which stands again afterwards; where it is somebody else's, the answer is no.
    bool reachesFar();

private:
    std::optional<Instant> read(const char* name) const;
    /// The error, or 0.
    int write(Instant value) const;
    Setting arm(Instant value);
    std::optional<Instant> noted() const;
    void note(std::optional<Instant> value) const;

    std::string _clock;
    std::string _note;
};

}  // namespace quorel
