#pragma once

#include <functional>

namespace quorel::appkit {

/// Runs it to its end, or to a C++ exception, of which nothing is said. Objective-C++ cannot catch one on GNUstep.
void runGuarded(const std::function<void()> &action);

}  // namespace quorel::appkit
