#include "daemon/acting/StateFile.h"

#include <unistd.h>

#include <utility>

#include "daemon/saving/FileReplacement.h"
#include "kit/MOLLog.h"
#include "linux/pane/RootedPropertyListFiles.h"
#include "model/PropertyList.h"

namespace quorel {

StateFile::StateFile(std::string path) : _path(std::move(path)) {
    removeLeftovers(_path);
}

Value StateFile::read() const {
    Value state = RootedPropertyListFiles("").dictionaryWithContentsOfFile(_path);
    if (state.isAbsent() && access(_path.c_str(), F_OK) == 0) return "unreadable";
    return state;
}

bool StateFile::save(const Value& state) {
    const auto bytes = encodePropertyList(state);
    // What is begun must not be begun again after a loss of power. Otherwise the loop is held up by one sync less.
    const bool begins = state["Open"] != std::exchange(_open, state["Open"]);
    const bool failed = !_fault.empty();
    _fault = bytes ? replaceFile(_path, *bytes, begins ? Lasts::kByNow : Lasts::kSoon)
                   : "It cannot be written as a property list";
    if (!_fault.empty() && !failed) MOLLog("The state of the Schedules is not kept: %s.", _fault.c_str());
    return _fault.empty();
}

}  // namespace quorel
