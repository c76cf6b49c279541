#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "daemon/saving/ListReader.h"
#include "daemon/saving/PreferencesStore.h"
#include "linux/EventLoop.h"
#include "linux/FileWatch.h"

namespace quorel {

/// Which preferences the daemon goes by: those of the file in place, whoever has put it there, if a save of them would
/// be taken. Of a file that is refused it says why, and goes on with what it had.
class PlanInPlace {
public:
    /// Absent where there is no file.
    using Taken = std::function<void(const Value& preferences)>;
    PlanInPlace(EventLoop& loop, const std::string& root, Taken taken);

    /// Reads the file at once. Without one to go by, `taken` is told of none.
    void begin();
    /// Reads it soon, and calls `taken` even if it is the same.
    void reload();
    /// The daemon itself has put these bytes in place.
    void stored(const std::string& bytes);

    /// Why the file in place is not the one that the daemon goes by; empty where it is.
    const std::string& fault() const { return _fault; }

private:
    void read();
    void found(const ListReader::Reading& reading);
    void adopt(const std::string& bytes);
    void refuse(const std::string& fault);

    const PreferencesStore _store;
    const Taken _taken;
    ListReader _reader;
    FileWatch _watch;
    std::size_t _digest = 0;   // of the bytes that it goes by
    bool _isOutdated = false;  // what is being read
    bool _takesSame = false;
    std::string _fault;
};

}  // namespace quorel
