#include "linux/time/StartupAlarm.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include "linux/FileDescriptor.h"

namespace quorel {

namespace {

// Closer ones might pass while they are written.
constexpr Seconds kClosest = 5;

std::optional<Instant> readNumber(const std::string& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    char text[32];
    const ssize_t size = file ? ::read(file.get(), text, sizeof text) : 0;
    Instant number = 0;
    if (size <= 0 || std::from_chars(text, text + size, number).ec != std::errc()) return {};
    return number;
}

int writeNumber(const std::string& path, Instant number, int flags) {
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | flags, 0644));
    const std::string text = std::to_string(number) + "\n";
    if (!file || ::write(file.get(), text.data(), text.size()) < 0) return errno;
    return file.close() ? 0 : errno;
}

}  // namespace

StartupAlarm::StartupAlarm(std::string clock, std::string note) : _clock(std::move(clock)), _note(std::move(note)) {}

bool StartupAlarm::exists() const {
    return access((_clock + "/wakealarm").c_str(), F_OK) == 0;
}

StartupAlarm::Setting StartupAlarm::set(std::optional<Instant> at, Instant now) {
    const auto shown = read("since_epoch");
    if (!shown || !exists()) return {Result::kAbsent, {}, {}};
    auto present = read("wakealarm");
    if (present && *present <= *shown) present.reset();  // it has rung
    const auto ours = noted();
    const bool othersStands = present && present != ours;
    Setting setting;
    if (othersStands) setting.others = *present - *shown + now;

    if (!at || *at < now + kClosest) {
        if (at) setting.result = Result::kPast;
        if (present && !othersStands) {
            if (const int error = write(0)) return {Result::kFailed, {}, std::strerror(error)};
        }
        if (ours) note({});
        return setting;
    }
    const Instant wanted = *shown + (*at - now);
    if (othersStands && *present <= wanted) {
        setting.result = Result::kTaken;
        return setting;
    }
    Setting armed = arm(wanted);
    if (armed.result != Result::kDone) return armed;
    setting.result = othersStands ? Result::kReplaced : Result::kDone;
    return setting;
}

StartupAlarm::Setting StartupAlarm::arm(Instant value) {
    note(value);
    int error = write(0);  // an alarm that is set cannot be set again
    if (!error) error = write(value);
    if (error == EINVAL) return {Result::kTooFar, {}, {}};
    if (error) return {Result::kFailed, {}, std::strerror(error)};
    // A clock may have rounded it; one that dropped it has not got it.
    const auto stands = read("wakealarm");
    if (!stands) return {Result::kFailed, {}, "the clock did not keep it"};
    if (*stands != value) note(*stands);
    return {};
}

std::optional<Instant> StartupAlarm::comes(Instant now) const {
    const auto shown = read("since_epoch");
    const auto stands = read("wakealarm");
    if (!shown || !stands || stands != noted()) return {};
    return *stands - *shown + now;
}

bool StartupAlarm::reachesFar() {
    const auto shown = read("since_epoch");
    const auto present = read("wakealarm");
    if (!shown || (present && present != noted())) return false;
    if (present) write(0);
    const bool accepted = write(*shown + 2 * kDay) == 0;
    if (accepted) write(0);
    if (present) write(*present);
    return accepted;
}

std::optional<Instant> StartupAlarm::read(const char* name) const {
    const auto number = readNumber(_clock + "/" + name);
    return number && *number > 0 ? number : std::nullopt;
}

int StartupAlarm::write(Instant value) const {
    return writeNumber(_clock + "/wakealarm", value, 0);
}

std::optional<Instant> StartupAlarm::noted() const {
    return readNumber(_note);
}

void StartupAlarm::note(std::optional<Instant> value) const {
    if (value)
        writeNumber(_note, *value, O_CREAT);
    else
        unlink(_note.c_str());
}

}  // namespace quorel
