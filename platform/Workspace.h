#pragma once

#include <string_view>

namespace quorel {

/// The user's desktop. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// Shows the page in the user's browser; false when it could not be handed over.
    virtual bool openURL(std::string_view url) = 0;
};

}  // namespace quorel
