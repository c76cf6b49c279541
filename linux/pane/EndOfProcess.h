#pragma once

#include <functional>

#include "platform/System.h"

namespace quorel {

/// Calls `last` once, on the main thread, before this process ends by itself (exit, as when the display is gone at
/// log-out) or is ended by SIGTERM or SIGHUP, where the host leaves these signals alone. The process ends two seconds
/// later at the latest, whatever `last` or the main thread is doing. Once a process; `mainQueue` outlives it.
void beforeTheEnd(DispatchQueue& mainQueue, std::function<void()> last);

}  // namespace quorel
