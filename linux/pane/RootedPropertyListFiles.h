#pragma once

#include <string>
#include <utility>

#include "platform/System.h"

namespace quorel {

/// Reads files below a root directory: "/Library/x" is `root` + "/Library/x".
class RootedPropertyListFiles : public PropertyListFiles {
public:
    explicit RootedPropertyListFiles(std::string root = {}) : _root(std::move(root)) {}
    Value dictionaryWithContentsOfFile(std::string_view path) const override;

private:
    std::string _root;
};

}  // namespace quorel
