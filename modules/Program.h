#pragma once

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string>

#include "model/PropertyList.h"
#include "model/Value.h"

namespace quorel {

// What the programs of modules begin and end with.

/// The parameters of the Schedule that is carried out; absent where they cannot be read.
inline Value actionParameters() {
    const std::string bytes{std::istreambuf_iterator<char>(std::cin), {}};
    return decodePropertyList(bytes);
}

/// The path that "~/bin/x" is where HOME tells; any other text as it is.
inline std::string fromHome(const std::string& path) {
    const char* home = std::getenv("HOME");
    return path.starts_with("~/") ? (home && *home ? home : "") + path.substr(1) : path;
}

/// Says why in one line, which the journal keeps. The exit status.
inline int failed(std::string reason) {
    std::replace_if(
        reason.begin(), reason.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    std::cerr << reason << std::endl;
    return 1;
}

}  // namespace quorel
