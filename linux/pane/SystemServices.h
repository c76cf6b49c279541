#pragma once

#include <string>

#include "kit/update/CurlUpdateChecker.h"
#include "platform/System.h"

namespace quorel {

struct SystemSettings {
    const char* program;  ///< the name that the journal shows; outlives the process's log
    std::string root;     ///< folder put in front of the product's absolute paths, for trying out; mostly empty
    CurlUpdateChecker::Settings updates;
};

/// Makes this system's half of a Platform for a pane of any toolkit, whose queue of the main thread is given. Installs
/// the log, the channel to the other programs and the update check for the process too, so call it once, before threads
/// start. Nothing of it is ever destroyed, since background work may use it up to the last moment.
System startSystemServices(SystemSettings settings, DispatchQueue& mainQueue);

}  // namespace quorel
