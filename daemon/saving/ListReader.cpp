#include "daemon/saving/ListReader.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <exception>
#include <utility>

#include "model/Names.h"
#include "model/PropertyList.h"
#include "planning/PreferencesCheck.h"

namespace quorel {

namespace {

using Outcome = ListReader::Outcome;
using Kind = Outcome::Kind;

/// What stands before the text where the process writes its outcome.
struct Head {
    Kind kind;
    bool keptUnreadable;
};

/// InPlace where that is what stands there.
Outcome outcomeOf(std::string_view bytes, const std::function<Value()>& inPlace) try {
    const Value preferences = decodePropertyList(bytes, wire::kMaximumUserInfoBytes);
    if (preferences.isAbsent()) return {Kind::Invalid, false, "It is no property list of at most 2 MiB and 64 levels."};
    if (const auto fault = faultInPreferences(preferences)) return {Kind::Invalid, false, *fault};
    if (areSamePreferences(inPlace(), preferences)) return {Kind::InPlace, false, {}};
    auto file = encodePropertyList(preferences, wire::kMaximumUserInfoBytes);
    if (!file) return {Kind::Invalid, false, "The file would be larger than 2 MiB."};
    return {Kind::Fresh, false, std::move(*file)};
} catch (const std::exception& exception) {  // memory has run out
    return {Kind::Failed, false, exception.what()};
}

Outcome stored(std::string file, const PreferencesStore& store) {
    const bool kept = store.keepUnreadable();
    if (auto reason = store.write(file); !reason.empty()) return {Kind::NotStored, kept, std::move(reason)};
    return {Kind::Stored, kept, std::move(file)};
}

}  // namespace

ListReader::ListReader(EventLoop& loop, const PreferencesStore& store) : _loop(loop), _store(store) {}

ListReader::~ListReader() {
    if (_child <= 0) return;
    kill(_child, SIGKILL);
    waitpid(_child, nullptr, 0);
    close(_file);
    _store.removeLeftovers();
}

void ListReader::read(std::string_view bytes, bool mayStore, std::function<void(Outcome)> done) {
    // A file that the daemon would not go by is not in place.
    const auto present = [this] { return decodePropertyList(_store.contents(wire::kMaximumUserInfoBytes).bytes); };
    const auto reading = [this, bytes, mayStore, present] {
        Outcome outcome = outcomeOf(bytes, present);
        return mayStore && outcome.kind == Kind::Fresh ? stored(std::move(outcome.text), _store) : outcome;
    };
    begin(reading, std::move(done));
}

void ListReader::readInPlace(std::function<void(Outcome)> done) {
    begin([this] { return inPlace(_store); }, std::move(done));
}

Outcome ListReader::inPlace(const PreferencesStore& store) {
    const PreferencesStore::Contents file = store.contents(wire::kMaximumUserInfoBytes);
    if (!file.exists) return {Kind::Absent, false, {}};
    if (!file.fault.empty()) return {Kind::Invalid, false, file.fault};
    return outcomeOf(file.bytes, [] { return Value(); });
}

void ListReader::begin(const std::function<Outcome()>& reading, std::function<void(Outcome)> done) {
    _done = std::move(done);
    _file = memfd_create("preferences", MFD_CLOEXEC);
    const pid_t daemon = getpid();
    _child = _file < 0 ? -1 : fork();
    if (_child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != daemon) _exit(1);
        // Were the daemon killed, its connection to the bus would live on in here.
        close_range(STDERR_FILENO + 1, static_cast<unsigned>(_file) - 1, 0);
        close_range(static_cast<unsigned>(_file) + 1, UINT_MAX, 0);
        setpriority(PRIO_PROCESS, 0, 10);  // everything else comes first
        const auto [kind, kept, text] = reading();
        const Head head{kind, kept};
        const bool written = write(_file, &head, sizeof head) == sizeof head &&
                             write(_file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        _exit(written ? 0 : 1);
    }
    const auto childEnded = [](sd_event_source*, const siginfo_t* end, void* self) {
        static_cast<ListReader*>(self)->ended(end->si_code == CLD_EXITED && end->si_status == 0);
        return 0;
    };
    const auto notStarted = [](sd_event_source*, void* self) {
        static_cast<ListReader*>(self)->ended(false);
        return 0;
    };
    sd_event_source* source = nullptr;
    if (_child > 0) {
        sd_event_add_child(_loop.get(), &source, _child, WEXITED, childEnded, this);
    } else {
        sd_event_add_defer(_loop.get(), &source, notStarted, this);
    }
    _end.reset(source);
}

void ListReader::ended(bool orderly) {
    Outcome outcome{Kind::Failed, false, "The list could not be read."};
    const off_t size = orderly ? lseek(_file, 0, SEEK_END) : 0;
    if (Head head; size >= static_cast<off_t>(sizeof head)) {
        pread(_file, &head, sizeof head, 0);
        outcome = {head.kind, head.keptUnreadable, std::string(static_cast<std::size_t>(size) - sizeof head, '\0')};
        pread(_file, outcome.text.data(), outcome.text.size(), sizeof head);
    }
    if (_file >= 0) close(std::exchange(_file, -1));
    _child = 0;
    _end.reset();
    std::exchange(_done, nullptr)(std::move(outcome));
}

}  // namespace quorel
