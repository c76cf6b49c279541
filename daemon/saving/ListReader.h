#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "daemon/saving/PreferencesStore.h"
#include "linux/EventLoop.h"

namespace quorel {

/// Reads preferences that anybody may have sent, and stores them, one list at a time, in a process of its own: the loop
/// goes on meanwhile, however slow the disk, what the reading takes is gone with the process, and so is only that
/// process if it should fail. It ends with the daemon, so that what the daemon starts with stays in place.
class ListReader {
public:
    struct Reading {
        enum class Kind { Fresh, Stored, InPlace, Absent, Invalid, NotStored, Failed } kind = Kind::Failed;
        bool keptUnreadable = false;  ///< the file in place could not be read and has a second name now
        std::string text;             ///< Fresh, Stored: the file's bytes; Invalid, NotStored, Failed: why
        std::string joined = {};      ///< of edits: what the answer tells of others' that they were joined with
    };
    /// Bytes of property lists.
    struct Sent {
        std::string_view preferences;
        std::optional<std::string_view> base;  ///< what they were made of, where others' edits are to be joined
    };

    ListReader(EventLoop& loop, const PreferencesStore& store);
    /// Ends what is read; what is stored by then stays so.
    ~ListReader();
    ListReader(const ListReader&) = delete;

    bool isReading() const { return _child > 0; }
    /// Not while it reads. What comes to something else than what is in place is Fresh, or stored where it may be.
    /// Bytes are copied; `done` is called later, and may read the next list.
    void read(const Sent& sent, bool mayStore, std::function<void(Reading)> done);
    /// The same of the file in place: Fresh, however often it is read, Absent, or InPlace where its bytes have the
    /// digest that is known.
    void readInPlace(std::optional<std::size_t> known, std::function<void(Reading)> done);
    /// That at once, in this process.
    static Reading inPlace(const PreferencesStore& store, std::optional<std::size_t> known = {});
    /// What is the same is written in the same bytes.
    static std::size_t digestOf(std::string_view bytes);

private:
    void begin(const std::function<Reading()>& work, std::function<void(Reading)> done);
    void ended(bool orderly);

    EventLoop& _loop;
    const PreferencesStore& _store;
    std::function<void(Reading)> _done;
    pid_t _child = 0;
    int _file = -1;  // where the process writes what it has read
    EventSource _end;
};

}  // namespace quorel
