// A module's information dictionary. Whatever stands in it, what is told of it can be sent, and a sound one completes
// parameters so that nothing is left to complete, and says them.
#include "actions/ActionDescription.h"
#include "model/Dictionary.h"
#include "model/PropertyList.h"
#include "tests/fuzz/Fuzzer.h"

namespace quorel {

void feed(std::string_view bytes) {
    const auto description = ActionDescription::read("Fuzzed.vxplugin", bytes);
    require(encodePropertyList(description.value()).has_value());
    if (!description.isSound()) return;
    require(description.program.find('/') == std::string::npos);
    const Value standards = description.standards();
    require(description.completed(standards) == standards);
    for (const char* language : {"en", "fr"})
        require(description.line(standards, language).find('\n') == std::string::npos);
}

}  // namespace quorel
