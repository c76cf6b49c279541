#pragma once

#include <string>

namespace quorel {

/// Opens a page in the user's browser, through xdg-open. Takes isWebAddress addresses and no others.
/// False when it could not be started.
bool openInBrowser(const std::string& address);

}  // namespace quorel
