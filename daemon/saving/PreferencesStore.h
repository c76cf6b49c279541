#pragma once

#include <string>
#include <string_view>

#include "linux/pane/RootedPropertyListFiles.h"
#include "model/Preferences.h"

namespace quorel {

/// The preferences file below a root directory. One thread at a time writes; reading is for any thread.
class PreferencesStore {
public:
    explicit PreferencesStore(const std::string& root) : _files(root), _path(root + std::string(preferences::kFile)) {}

    const std::string& path() const { return _path; }
    /// Absent when there is no file that can be read.
    Value read() const;
    struct Contents {
        bool exists = false;
        std::string fault;  ///< why the bytes are not to be had, a sentence; empty where they are
        std::string bytes;
    };
    /// The file, unless others than root could have changed it, or it is larger.
    Contents contents(std::size_t most) const;
    /// As replaceFile.
    std::string write(std::string_view bytes) const;
    /// Gives a file that is no readable dictionary a second name ("….unreadable", the latest one alone), under which it
    /// outlives the next write. False when there is no such file.
    bool keepUnreadable() const;
    /// Removes what an interrupted write has left behind.
    void removeLeftovers() const;

private:
    RootedPropertyListFiles _files;
    std::string _path;
};

}  // namespace quorel
