#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

#include "daemon/saving/PreferencesStore.h"
#include "linux/EventLoop.h"

namespace quorel {

/// Reads preferences that anybody may have sent, one list at a time, in a process of its own: the loop goes on
/// meanwhile, what the reading takes is gone with the process, and so is only that process if it should fail.
class ListReader {
public:
    struct Outcome {
        enum class Kind { Fresh, InPlace, Absent, Invalid, Failed } kind = Kind::Failed;
        std::string text;  ///< Fresh: the file's bytes; Invalid, Failed: why
    };

    ListReader(EventLoop& loop, const PreferencesStore& store);
    /// Ends what is read.
    ~ListReader();
    ListReader(const ListReader&) = delete;

    bool isReading() const { return _child > 0; }
    /// Not while it reads. `bytes` are copied; `done` is called later, and may read the next list.
    void read(std::string_view bytes, std::function<void(Outcome)> done);
    /// The same of the file in place: Fresh, however often it is read, or Absent.
    void readInPlace(std::function<void(Outcome)> done);
    /// That at once, in this process.
    static Outcome inPlace(const PreferencesStore& store);

private:
    void begin(const std::function<Outcome()>& reading, std::function<void(Outcome)> done);
    void ended(bool orderly);

    EventLoop& _loop;
    const PreferencesStore& _store;
    std::function<void(Outcome)> _done;
    pid_t _child = 0;
    int _file = -1;  // where the process writes its outcome
    EventSource _end;
};

}  // namespace quorel
