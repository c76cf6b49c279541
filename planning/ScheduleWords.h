#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "model/Value.h"
#include "planning/ActionWords.h"
#include "planning/ShellWords.h"
#include "planning/TextFault.h"
#include "planning/TimeWords.h"

namespace quorel {

// A Schedule in words: "23:15 mon-fri sleep off only-when-idle=yes". Two Schedules that are written alike are read
// alike by whoever carries them out: numbers, days and flags by their integer value, described options by theirs. What
// no words say is JSON: "parameters={…}" for parameters that nobody describes, and the whole of a Schedule that is more
// or less than one.

/// On which days it is active.
DaySet daysOf(const Value& schedule);

/// Time, days and action, then what else there is to say; or one word of JSON. Not quoted.
std::vector<std::string> wordsOf(const Value& schedule, const ActionWords& actions);
/// The same, quoted as in a shell.
std::string lineOf(const Value& schedule, const ActionWords& actions);

/// The Schedule that words say, in any order but for those behind "--". Days that are not said are all. Absent where
/// something is wrong, and then `faults` has more, of line 1.
Value scheduleOf(std::span<const Word> words, const ActionWords& actions, std::vector<TextFault>& faults);
/// The Schedule with what the words name, "+sat" and "-sun" among them, everything else staying as it is stored. With
/// another action its parameters begin anew. Absent as above.
Value changedSchedule(const Value& schedule, std::span<const Word> words, const ActionWords& actions,
                      std::vector<TextFault>& faults);

/// What is wrong with the program that the words name, where the Schedule runs one: it is said by its whole path, or by
/// that from the home folder on of who is at the computer, "~/bin/backup.sh".
std::optional<TextFault> programFault(const Value& schedule, std::span<const Word> words, const ActionWords& actions);

}  // namespace quorel
