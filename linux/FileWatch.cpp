#include "linux/FileWatch.h"

#include <sys/inotify.h>

#include <chrono>
#include <cstring>
#include <system_error>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;

// Editors move the old file away before the new one comes.
constexpr auto kSettling = 500ms;

constexpr unsigned kOfTheFile = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB;
constexpr unsigned kOfTheFolder = IN_DELETE_SELF | IN_MOVE_SELF;

/// The file's folder, or what there is of the way to it.
std::filesystem::path folderOf(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::path folder = file.parent_path();
    while (!std::filesystem::is_directory(folder, error) && folder != folder.parent_path())
        folder = folder.parent_path();
    return folder;
}

}  // namespace

FileWatch::FileWatch(EventLoop& loop, std::filesystem::path file, std::function<void()> changed)
    : _loop(loop), _file(std::move(file)), _settling(loop, std::move(changed)) {
    watch();
}

bool FileWatch::isThere() const {
    return _watched == _file.parent_path();
}

void FileWatch::watch() {
    const auto happened = [](sd_event_source*, const inotify_event* event, void* self) {
        static_cast<FileWatch*>(self)->happened(event->mask, event->len > 0 ? event->name : "");
        return 0;
    };
    do {
        _watched = folderOf(_file);
        const unsigned events = kOfTheFolder | (isThere() ? kOfTheFile : IN_CREATE | IN_MOVED_TO);
        sd_event_source* source = nullptr;
        const int result = sd_event_add_inotify(_loop.get(), &source, _watched.c_str(), events, happened, this);
        _source.reset(source);
        if (result < 0) return MOLLog("Changes of %s are not noticed: %s.", _file.c_str(), std::strerror(-result));
    } while (_watched != folderOf(_file));  // more of it has come meanwhile
}

void FileWatch::happened(unsigned what, const char* name) {
    const bool wasThere = isThere();
    bool matters = wasThere && (_file.filename() == name || (what & IN_Q_OVERFLOW) != 0);
    if ((what & kOfTheFolder) != 0 || _watched != folderOf(_file)) {
        watch();
        matters = matters || wasThere || isThere();
    }
    if (matters && !_settling.isRunning()) _settling.start(kSettling);
}

}  // namespace quorel
