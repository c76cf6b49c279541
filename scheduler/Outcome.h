#pragma once

#include <string>
#include <string_view>

#include "model/Dictionary.h"
#include "model/Wire.h"
#include "scheduler/Instant.h"

namespace quorel {

/// How an occurrence ended, or what else there is to tell. Data only: whoever shows it makes the sentence.
struct Outcome {
    std::string code;    ///< one of `outcome`
    Instant at = 0;      ///< when this was found out
    Instant due = 0;     ///< when the occurrence was due; 0 where there is none
    std::string action;  ///< its action type; empty where there is no occurrence
    Dictionary arguments;

    /// As it is stored and sent.
    Value value() const;
};

namespace outcome = wire::outcome;  // the codes, and what stands in their arguments

/// How a module's program ended: each the outcome of that name.
enum class ActionEnd { kRan, kFailed, kTimedOut, kNotStarted, kUnknown };
inline constexpr std::string_view kActionEnds[] = {outcome::kRan, outcome::kFailed, outcome::kTimedOut,
                                                   outcome::kNotStarted, outcome::kUnknown};

}  // namespace quorel
