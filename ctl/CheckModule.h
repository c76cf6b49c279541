#pragma once

#include <string>

#include "ctl/Commands.h"
#include "ctl/Page.h"

namespace quorel {

/// Says what is wrong with a module's folder before it is installed, and how its action would be run. Who owns it is
/// another question: copied by root, it is root's.
ExitStatus checkModule(const Page& page, const CommandLine& line);

}  // namespace quorel
