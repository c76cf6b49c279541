#include "model/PropertyList.h"

#include <exception>

#include "model/PropertyListContent.h"

namespace quorel {

// Expat reads the XML. libplist, which would know property lists too, was tried and is not used: version 2.2 recurses
// without a bound, compares every key of a large dictionary with every other, takes quadratic time over character
// references, and cannot tell 2^64-1 from -1 nor hold a date past January 2069. To check for all that beforehand is to
// read the list.
Value decodePropertyList(std::string_view bytes, std::size_t maximumBytes) try {
    if (bytes.size() > maximumBytes) return {};
    return (bytes.starts_with("bplist0") ? readBinaryPropertyList(bytes, maximumBytes) : readXmlPropertyList(bytes))
        .value_or(Value());
} catch (const std::exception&) {  // out of memory
    return {};
}

}  // namespace quorel
