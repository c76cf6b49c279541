// Property lists in all three forms. What has been read can be written, and reads as the same.
#include "model/PropertyList.h"
#include "model/PropertyListText.h"
#include "tests/fuzz/Fuzzer.h"

namespace quorel {

namespace {

constexpr std::size_t kLargest = std::size_t{64} * 1024;

void readAndWrite(const Value& value) {
    // Written dates are whole seconds within the calendar's years.
    const auto written = encodePropertyList(value);
    if (!written) return;
    const Value again = decodePropertyList(*written);
    require(again.isPresent() && encodePropertyList(again) == written);
}

}  // namespace

void feed(std::string_view bytes) {
    readAndWrite(decodePropertyList(bytes, kLargest));
    readAndWrite(decodePropertyListText(bytes));
}

}  // namespace quorel
