#include "linux/pane/Browser.h"

#include "kit/update/UpdateRecord.h"
#include "linux/Launch.h"

namespace quorel {

bool openInBrowser(const std::string& address) {
    return isWebAddress(address) && startProgram({"xdg-open", address});
}

}  // namespace quorel
