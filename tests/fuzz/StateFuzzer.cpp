// The scheduler's stored state. What is understood is stored again as the same.
#include "model/PropertyList.h"
#include "scheduler/State.h"
#include "tests/fuzz/Fuzzer.h"

namespace quorel {

void feed(std::string_view bytes) {
    const auto state = StoredState::from(decodePropertyList(bytes));
    if (!state) return;
    const Value stored = state->value();
    const auto again = StoredState::from(stored);
    require(again && again->value() == stored);
}

}  // namespace quorel
