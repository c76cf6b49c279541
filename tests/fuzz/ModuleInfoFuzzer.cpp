// A module's information dictionary. What is told of it keeps to the limits, and can be sent whatever stands in it.
#include "daemon/modules/ModuleInfo.h"
#include "model/ModuleKeys.h"
#include "model/PropertyList.h"
#include "model/PropertyListText.h"
#include "tests/fuzz/Fuzzer.h"

namespace quorel {

void feed(std::string_view bytes) {
    Value dictionary = decodePropertyList(bytes);
    if (dictionary.isAbsent()) dictionary = decodePropertyListText(bytes);
    const ModuleInfo info = ModuleInfo::from("Fuzzed.vxplugin", dictionary);
    require(info.limit >= 0 && info.limit <= module_keys::kMostTimeLimit);
    require(info.program.find('/') == std::string::npos || info.fault == module_fault::kMalformed);
    require(encodePropertyList(info.value()).has_value());
}

}  // namespace quorel
