#pragma once

#include <filesystem>
#include <functional>

#include "linux/EventLoop.h"

namespace quorel {

/// Tells when a file may be another one: written and closed, put in place, taken away, or with other rights. Its folder
/// may come later, too. A link is watched as such: what it leads to may change unseen.
class FileWatch {
public:
    /// `changed` is called soon after a change, once for several. Where nothing can be watched, one line says so.
    FileWatch(EventLoop& loop, std::filesystem::path file, std::function<void()> changed);
    FileWatch(const FileWatch&) = delete;

private:
    bool isThere() const;
    void watch();
    void happened(unsigned what, const char* name);

    EventLoop& _loop;
    const std::filesystem::path _file;
    std::filesystem::path _watched;  // the file's folder, or what there is of the way to it
    EventSource _source;
    LoopTimer _settling;
};

}  // namespace quorel
