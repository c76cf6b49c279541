#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "ctl/DaemonClient.h"
#include "ctl/Forecast.h"
#include "ctl/Plan.h"

namespace quorel {

/// A list of dictionaries that the daemon tells, made sure to be one.
DaemonClient::Answer askForList(DaemonClient& daemon, const char* method, std::optional<unsigned> most = {});

/// A line of each pause that is set, with its number.
std::vector<std::string> pauseLines(const Array& pauses);

/// What comes next, as the daemon tells it, with the numbers that the plan's list has.
class Occurrences {
public:
    Occurrences(const std::string& root, DaemonClient& daemon, unsigned most);

    const DaemonClient::Answer& answer() const { return _answer; }
    /// Each with "Number", where the plan still has its Schedule.
    const Array& upcoming() const { return _upcoming; }
    const Array& pauses() const { return _pauses; }
    const Plan& plan() const { return _plan; }

    /// What is named by its number, its token, or nothing: the next one, those left out that were skipped already or
    /// are not to be had. One that is too far ahead to be told is as the plan has it. Absent where there is none; of a
    /// token that the plan does not have, it alone is there.
    Value meant(const std::string& name, bool isSkipped = false) const;
    /// " Next: …", of the Schedule of that number, after an instant.
    std::string nextSentence(std::int64_t number, Instant after) const;

private:
    Value planned(std::size_t index, Instant due, const std::string& token) const;

    Plan _plan;
    Array _pauses;
    Forecast _forecast;
    DaemonClient::Answer _answer;
    Array _upcoming;
};

}  // namespace quorel
