#pragma once

#include <string>
#include <utility>

#include "scheduler/World.h"

namespace quorel {

/// What the scheduler keeps from one run of the daemon to the next: a property list in a file.
class StateFile : public Store {
public:
    explicit StateFile(std::string path);

    /// Absent when there is no file, and a text when there is one that cannot be read.
    Value read() const;
    bool save(const Value& state) override;
    /// Why the last one could not be saved; empty where it could.
    const std::string& fault() const { return _fault; }

private:
    const std::string _path;
    Value _open = Array();  ///< what the file has of begun occurrences, as far as known here
    std::string _fault;     ///< said once
};

}  // namespace quorel
