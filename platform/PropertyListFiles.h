#pragma once

#include <string_view>

#include "model/Value.h"

namespace quorel {

/// Reads property-list files whole, in whichever encoding the platform knows. Main thread.
class PropertyListFiles {
public:
    virtual ~PropertyListFiles() = default;
    /// Absent when there is no file, it cannot be read, or its root is no dictionary. Never throws.
    virtual Value dictionaryWithContentsOfFile(std::string_view path) const = 0;
};

}  // namespace quorel
