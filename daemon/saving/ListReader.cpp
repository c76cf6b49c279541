#include "daemon/saving/ListReader.h"

#include <sys/mman.h>
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

/// InPlace where that is what stands there.
Outcome outcomeOf(std::string_view bytes, const std::function<Value()>& inPlace) try {
    const Value preferences = decodePropertyList(bytes, wire::kMaximumUserInfoBytes);
    if (preferences.isAbsent()) return {Kind::Invalid, "It is no property list of at most 2 MiB and 64 levels."};
    if (const auto fault = faultInPreferences(preferences)) return {Kind::Invalid, *fault};
    if (inPlace() == preferences) return {Kind::InPlace, {}};
    auto file = encodePropertyList(preferences, wire::kMaximumUserInfoBytes);
    if (!file) return {Kind::Invalid, "The file would be larger than 2 MiB."};
    return {Kind::Fresh, std::move(*file)};
} catch (const std::exception& exception) {  // memory has run out
    return {Kind::Failed, exception.what()};
}

}  // namespace

ListReader::ListReader(EventLoop& loop, const PreferencesStore& store) : _loop(loop), _store(store) {}

ListReader::~ListReader() {
    if (_child <= 0) return;
    kill(_child, SIGKILL);
    waitpid(_child, nullptr, 0);
    close(_file);
}

void ListReader::read(std::string_view bytes, std::function<void(Outcome)> done) {
    // A file that the daemon would not go by is not in place.
    const auto present = [this] { return decodePropertyList(_store.contents(wire::kMaximumUserInfoBytes).bytes); };
    begin([bytes, present] { return outcomeOf(bytes, present); }, std::move(done));
}

void ListReader::readInPlace(std::function<void(Outcome)> done) {
    begin([this] { return inPlace(_store); }, std::move(done));
}

Outcome ListReader::inPlace(const PreferencesStore& store) {
    const PreferencesStore::Contents file = store.contents(wire::kMaximumUserInfoBytes);
    if (!file.exists) return {Kind::Absent, {}};
    if (!file.fault.empty()) return {Kind::Invalid, file.fault};
    return outcomeOf(file.bytes, [] { return Value(); });
}

void ListReader::begin(const std::function<Outcome()>& reading, std::function<void(Outcome)> done) {
    _done = std::move(done);
    _file = memfd_create("preferences", MFD_CLOEXEC);
    _child = _file < 0 ? -1 : fork();
    if (_child == 0) {
        // Were the daemon killed, its connection to the bus would live on in here.
        close_range(STDERR_FILENO + 1, static_cast<unsigned>(_file) - 1, 0);
        close_range(static_cast<unsigned>(_file) + 1, UINT_MAX, 0);
        setpriority(PRIO_PROCESS, 0, 10);  // everything else comes first
        const auto [kind, text] = reading();
        const bool written = write(_file, &kind, sizeof kind) == sizeof kind &&
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
    Outcome outcome{Kind::Failed, "The list could not be read."};
    const off_t size = orderly ? lseek(_file, 0, SEEK_END) : 0;
    if (size >= static_cast<off_t>(sizeof outcome.kind)) {
        outcome.text.resize(static_cast<std::size_t>(size) - sizeof outcome.kind);
        pread(_file, &outcome.kind, sizeof outcome.kind, 0);
        pread(_file, outcome.text.data(), outcome.text.size(), sizeof outcome.kind);
    }
    if (_file >= 0) close(std::exchange(_file, -1));
    _child = 0;
    _end.reset();
    std::exchange(_done, nullptr)(std::move(outcome));
}

}  // namespace quorel
