#pragma once

#include <string>
#include <string_view>

#include "linux/RootedPropertyListFiles.h"

namespace quorel {

/// The preferences file below a root directory. One thread at a time writes; reading is for any thread.
class PreferencesStore {
public:
    explicit PreferencesStore(std::string root) : _files(root), _root(std::move(root)) {}

    /// Absent when there is no file that can be read.
    Value read() const;
    /// Puts a file of these bytes in place of the old one: at any moment, a power failure included, there is the one
    /// or the other whole. Readable by everybody. Makes the folder where it is missing. Answers with the reason when
    /// it failed, in which case the old file is in place, and with an empty text otherwise.
    std::string write(std::string_view bytes) const;
    /// Gives a file that is no readable dictionary a second name ("….unreadable", the latest one alone), under which it
    /// outlives the next write. False when there is no such file.
    bool keepUnreadable() const;
    /// Removes what an interrupted write has left behind.
    void removeLeftovers() const;

private:
    RootedPropertyListFiles _files;
    std::string _root;
};

}  // namespace quorel
