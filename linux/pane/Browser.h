#pragma once

#include <string>

namespace quorel {

/// Opens a page in the browser that the user prefers on this desktop, and leaves it to itself. Takes isWebAddress
/// addresses and no others. False when it could not be started. Any thread.
bool openInBrowser(const std::string& address);

}  // namespace quorel
