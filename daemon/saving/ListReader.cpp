#include "daemon/saving/ListReader.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <exception>
#include <functional>
#include <utility>

#include "model/Dictionary.h"
#include "model/PropertyList.h"
#include "model/Wire.h"
#include "planning/Merge.h"
#include "planning/PreferencesCheck.h"

namespace quorel {

namespace {

using Reading = ListReader::Reading;
using Kind = Reading::Kind;

/// What stands before the text where the process writes what it has read.
struct Head {
    Kind kind;
    bool keptUnreadable;
    std::size_t textSize;
};

Reading invalid(std::string why) {
    return {Kind::Invalid, false, std::move(why)};
}

std::string answerOf(const Merged& merged) {
    Array both;
    for (const auto& [theirs, own] : merged.both) both.push_back(Array{theirs, own});
    const Dictionary told{{wire::keys::kOthers, static_cast<std::int64_t>(merged.others)}, {wire::keys::kBoth, both}};
    return encodePropertyList(told).value_or("");
}

Reading readingOf(const Value& preferences, std::string joined) {
    if (const auto fault = faultInPreferences(preferences)) return invalid(*fault);
    auto file = encodePropertyList(preferences, wire::kMaximumUserInfoBytes);
    if (!file) return invalid("The file would be larger than 2 MiB.");
    return {Kind::Fresh, false, std::move(*file), std::move(joined)};
}

/// What is in place, read once at most. A file that the daemon would not go by is not in place.
class Present {
public:
    explicit Present(const PreferencesStore& store) : _store(store) {}

    /// `base`, where the file has its bytes: mostly edits are made of what is in place.
    const Value& value(std::string_view baseBytes = {}, const Value& base = {}) {
        if (_value) return *_value;
        const std::string bytes = _store.contents(wire::kMaximumUserInfoBytes).bytes;
        return _value.emplace(bytes == baseBytes ? base : decodePropertyList(bytes));
    }

private:
    const PreferencesStore& _store;
    std::optional<Value> _value;
};

/// What edits come to, joined with those of others.
Reading readingOfEdits(const Value& preferences, std::string_view baseBytes, Present& present) {
    Value base = decodePropertyList(baseBytes, wire::kMaximumUserInfoBytes);
    const Value& inPlace = present.value(baseBytes, base);
    const bool nothingRead = base[wire::kNothingStored].intValue() != 0;
    if (base.isDictionary()) base = base.with(wire::kNothingStored, {});
    if (const auto fault = faultInPreferences(base)) return invalid("What they were made of: " + *fault);
    const Merged merged = merge(inPlace, base, nothingRead, preferences);
    if (merged.preferences.isAbsent()) return {Kind::InPlace, false, {}, answerOf(merged)};
    return readingOf(merged.preferences, answerOf(merged));
}

/// InPlace where it comes to what is `present`.
Reading readingOf(const ListReader::Sent& sent, Present* present) try {
    const Value preferences = decodePropertyList(sent.preferences, wire::kMaximumUserInfoBytes);
    if (preferences.isAbsent()) return invalid("It is no property list of at most 2 MiB and 64 levels.");
    if (const auto fault = faultInPreferences(preferences)) return invalid(*fault);
    if (present && sent.base) return readingOfEdits(preferences, *sent.base, *present);
    if (present && areSamePreferences(present->value(), preferences)) return {Kind::InPlace, false, {}};
    return readingOf(preferences, {});
} catch (const std::exception& exception) {  // memory has run out
    return {Kind::Failed, false, exception.what()};
}

Reading stored(Reading fresh, const PreferencesStore& store, Present& present) {
    fresh.keptUnreadable = !present.value().isDictionary() && store.keepUnreadable();
    if (auto reason = store.write(fresh.text); !reason.empty())
        return {Kind::NotStored, fresh.keptUnreadable, std::move(reason)};
    fresh.kind = Kind::Stored;
    return fresh;
}

}  // namespace

std::size_t ListReader::digestOf(std::string_view bytes) {
    return std::hash<std::string_view>()(bytes);
}

ListReader::ListReader(EventLoop& loop, const PreferencesStore& store) : _loop(loop), _store(store) {}

ListReader::~ListReader() {
    if (_child <= 0) return;
    kill(_child, SIGKILL);
    waitpid(_child, nullptr, 0);
    close(_file);
    _store.removeLeftovers();
}

void ListReader::read(const Sent& sent, bool mayStore, std::function<void(Reading)> done) {
    const auto work = [this, sent, mayStore] {
        Present present(_store);
        Reading reading = readingOf(sent, &present);
        return mayStore && reading.kind == Kind::Fresh ? stored(std::move(reading), _store, present) : reading;
    };
    begin(work, std::move(done));
}

void ListReader::readInPlace(std::optional<std::size_t> known, std::function<void(Reading)> done) {
    begin([this, known] { return inPlace(_store, known); }, std::move(done));
}

Reading ListReader::inPlace(const PreferencesStore& store, std::optional<std::size_t> known) {
    const PreferencesStore::Contents file = store.contents(wire::kMaximumUserInfoBytes);
    if (!file.exists) return {Kind::Absent, false, {}};
    if (!file.fault.empty()) return {Kind::Invalid, false, file.fault};
    if (!file.bytes.empty() && known == digestOf(file.bytes)) return {Kind::InPlace, false, {}};
    return readingOf(Sent{file.bytes, {}}, nullptr);
}

void ListReader::begin(const std::function<Reading()>& work, std::function<void(Reading)> done) {
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
        const auto [kind, kept, text, joined] = work();
        const Head head{kind, kept, text.size()};
        bool written = write(_file, &head, sizeof head) == sizeof head;
        for (const std::string& part : {text, joined})
            written = written && write(_file, part.data(), part.size()) == static_cast<ssize_t>(part.size());
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
    Reading reading{Kind::Failed, false, "The list could not be read."};
    const off_t size = orderly ? lseek(_file, 0, SEEK_END) : 0;
    if (Head head; size >= static_cast<off_t>(sizeof head) && pread(_file, &head, sizeof head, 0) == sizeof head) {
        std::string text(static_cast<std::size_t>(size) - sizeof head, '\0');
        if (pread(_file, text.data(), text.size(), sizeof head) == static_cast<ssize_t>(text.size()))
            reading = {head.kind, head.keptUnreadable, text.substr(0, head.textSize), text.substr(head.textSize)};
    }
    if (_file >= 0) close(std::exchange(_file, -1));
    _child = 0;
    _end.reset();
    std::exchange(_done, nullptr)(std::move(reading));
}

}  // namespace quorel
