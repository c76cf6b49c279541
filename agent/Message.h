#pragma once

#include <string>

namespace quorel {

/// What the user is told. Plain text; nothing in it is interpreted.
struct Message {
    std::string title;
    std::string body;
    std::string button;  ///< leads to the page
    std::string page;    ///< isWebAddress; empty when there is no button
};

}  // namespace quorel
