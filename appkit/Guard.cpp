#include "appkit/Guard.h"

namespace quorel::appkit {

void runGuarded(const std::function<void()> &action) {
    try {
        action();
    } catch (...) {
    }
}

}  // namespace quorel::appkit
