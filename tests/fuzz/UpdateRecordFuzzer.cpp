// What an update feed answers. The page that comes out of it is one that a browser may be sent to.
#include "kit/update/UpdateRecord.h"
#include "kit/update/VersionOrder.h"
#include "tests/fuzz/Fuzzer.h"

namespace quorel {

void feed(std::string_view bytes) {
    const auto record = parseUpdateRecord(bytes);
    if (record) require(isWebAddress(record->pageUrl) && isVersion(record->version));
    isFeedAddress(bytes);
}

}  // namespace quorel
