#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "model/Value.h"

namespace quorel {

/// What a save comes to, where others may have saved since its sender read.
struct Merged {
    Value preferences;       ///< to be stored; absent: what is in place stays
    std::size_t others = 0;  ///< how many Schedules of the result the sender did not send
    /// Schedules that the sender and others have changed, each in another way: the others' and the sender's. Both are
    /// in the result.
    std::vector<std::pair<Value, Value>> both;
};

/// Joins what is `stored` now with `sent`, which its sender has made of `base`: preferences as the sender would have
/// sent them untouched, right after it had read the file. `base` and `sent` must pass faultInPreferences; `stored` may
/// be anything, and is absent where there is no file that can be read. `nothingRead`: so it was when the sender read.
///
/// - Of the list each distinct Schedule is counted, distinct being what is stored in another way. Changed by the sender
///   alone, or by others alone: as they have it. By both to the same count: that. Else what both have added and removed
///   adds up, to none at least.
/// - Its order is the stored one, unless the sender has changed the order of what it left. What only one of the two has
///   keeps its place behind its predecessor.
/// - An option is the sender's where the sender changed it, otherwise the stored one.
/// - "Prefs Version" is the sender's, and is no change. Whatever may not be stored is left out of what is in place.
///
/// So a sender that changed nothing changes nothing. Where nothing is stored there is nothing to join: what is sent is
/// taken whole, unless it is the unchanged rest of a file that has gone since.
Merged merge(const Value& stored, const Value& base, bool nothingRead, const Value& sent);

}  // namespace quorel
