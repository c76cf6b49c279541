#include "daemon/saving/PlanInPlace.h"

#include <functional>
#include <string>
#include <utility>

#include "kit/MOLLog.h"
#include "model/PropertyList.h"

namespace quorel {

namespace {

using Kind = ListReader::Outcome::Kind;

/// The reader writes what is the same in the same bytes, and nothing where there is no file.
std::size_t digestOf(const std::string& bytes) {
    return std::hash<std::string>()(bytes);
}

}  // namespace

PlanInPlace::PlanInPlace(EventLoop& loop, const std::string& root, Taken taken)
    : _store(root), _taken(std::move(taken)), _reader(loop, _store), _watch(loop, _store.path(), [this] { read(); }) {}

void PlanInPlace::begin() {
    const ListReader::Outcome outcome = ListReader::inPlace(_store);
    take(outcome.kind == Kind::Fresh ? outcome.text : std::string());
    if (outcome.kind == Kind::Invalid || outcome.kind == Kind::Failed) refuse(outcome.text);
}

void PlanInPlace::reload() {
    _takesSame = true;
    read();
}

void PlanInPlace::stored(const std::string& bytes) {
    _isOutdated = _reader.isReading();
    // Watching the file may have been quicker.
    if (std::exchange(_fault, {}).empty() && digestOf(bytes) == _digest) return;
    take(bytes);
}

void PlanInPlace::read() {
    if (_reader.isReading()) {
        _isOutdated = true;
        return;
    }
    _reader.readInPlace([this](const ListReader::Outcome& outcome) { found(outcome); });
}

void PlanInPlace::found(const ListReader::Outcome& outcome) {
    if (std::exchange(_isOutdated, false)) return read();
    bool anyway = std::exchange(_takesSame, false);
    if (anyway) _fault.clear();  // to be said again
    if (outcome.kind == Kind::Invalid || outcome.kind == Kind::Failed) return refuse(outcome.text);
    anyway = anyway || !std::exchange(_fault, {}).empty();
    if (!anyway && digestOf(outcome.text) == _digest) return;
    MOLLog(outcome.kind == Kind::Absent ? "There is no preferences file any more; nothing is planned."
                                        : "The preferences in place are taken over.");
    take(outcome.text);
}

void PlanInPlace::take(const std::string& bytes) {
    _digest = digestOf(bytes);
    _taken(decodePropertyList(bytes));
}

void PlanInPlace::refuse(const std::string& fault) {
    if (fault != std::exchange(_fault, fault)) MOLLog("The preferences in place are not taken over: %s", fault.c_str());
}

}  // namespace quorel
