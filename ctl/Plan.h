#pragma once

#include <string>

#include "ctl/Commands.h"
#include "model/Value.h"
#include "planning/ActionWords.h"

namespace quorel {

/// The plan as it was stored when this was made, and the actions that there are.
class Plan {
public:
    /// `root` stands before absolute paths of the product; mostly empty.
    explicit Plan(const std::string& root);

    /// What this program would send if nothing were changed: the six keys, each fit to be stored.
    const Value& preferences() const { return _preferences; }
    const Array& schedules() const;
    const ActionWords& actions() const { return _actions; }
    /// There is a file, and it cannot be read.
    bool isUnreadable() const { return _isUnreadable; }

    /// Has the daemon store it, joined with what others have stored since. Says what of theirs the sender would not
    /// expect, what becomes of a file that cannot be read, and why nothing was stored.
    ExitStatus save(const Value& preferences) const;
    ExitStatus saveSchedules(Array schedules) const;

private:
    void tellJoined(const Value& joined) const;

    Value _preferences;
    bool _nothingStored = false;
    bool _isUnreadable = false;
    ActionWords _actions;
};

}  // namespace quorel
