#pragma once

#include <string>
#include <vector>

namespace quorel {

/// What the user is told. Plain text; nothing in it is interpreted.
struct Message {
    struct Button {
        std::string key;  ///< comes back when it is pressed
        std::string label;
    };
    std::string title;
    std::string body;
    std::vector<Button> buttons = {};
    std::string withoutButtons = {};  ///< a line more where buttons are not shown
    std::string icon = "quorel";      ///< of the desktop's theme
    bool isUrgent = false;            ///< stays until somebody takes it away
};

}  // namespace quorel
