#include "daemon/saving/PlanInPlace.h"

#include <optional>
#include <string>
#include <utility>

#include "kit/MOLLog.h"
#include "model/PropertyList.h"

namespace quorel {

using Kind = ListReader::Reading::Kind;

PlanInPlace::PlanInPlace(EventLoop& loop, const std::string& root, Taken taken)
    : _store(root), _taken(std::move(taken)), _reader(loop, _store), _watch(loop, _store.path(), [this] { read(); }) {}

void PlanInPlace::begin() {
    const ListReader::Reading reading = ListReader::inPlace(_store);
    adopt(reading.kind == Kind::Fresh ? reading.text : std::string());
    if (reading.kind == Kind::Invalid || reading.kind == Kind::Failed) refuse(reading.text);
}

void PlanInPlace::reload() {
    _takesSame = true;
    read();
}

void PlanInPlace::stored(const std::string& bytes) {
    _isOutdated = _reader.isReading();
    // Watching the file may have been quicker.
    if (std::exchange(_fault, {}).empty() && ListReader::digestOf(bytes) == _digest) return;
    adopt(bytes);
}

void PlanInPlace::read() {
    if (_reader.isReading()) {
        _isOutdated = true;
        return;
    }
    const bool takesSame = _takesSame || !_fault.empty();
    _reader.readInPlace(takesSame ? std::nullopt : std::optional(_digest),
                        [this](const ListReader::Reading& reading) { found(reading); });
}

void PlanInPlace::found(const ListReader::Reading& reading) {
    if (std::exchange(_isOutdated, false)) return read();
    if (reading.kind == Kind::InPlace) return;
    bool anyway = std::exchange(_takesSame, false);
    if (anyway) _fault.clear();  // to be said again
    if (reading.kind == Kind::Invalid || reading.kind == Kind::Failed) return refuse(reading.text);
    anyway = anyway || !std::exchange(_fault, {}).empty();
    if (!anyway && ListReader::digestOf(reading.text) == _digest) return;
    MOLLog(reading.kind == Kind::Absent ? "There is no preferences file any more; nothing is planned."
                                        : "The preferences in place are taken over.");
    adopt(reading.text);
}

void PlanInPlace::adopt(const std::string& bytes) {
    _digest = ListReader::digestOf(bytes);
    _taken(decodePropertyList(bytes));
}

void PlanInPlace::refuse(const std::string& fault) {
    if (fault != std::exchange(_fault, fault)) MOLLog("The preferences in place are not taken over: %s", fault.c_str());
}

}  // namespace quorel
