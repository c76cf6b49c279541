#pragma once

#include <string>
#include <vector>

#include "ctl/Commands.h"
#include "ctl/DaemonClient.h"
#include "planning/TextFault.h"

namespace quorel {

// What did not go well: said on the standard error, and what the program then ends with.

void complain(const std::string& text);
ExitStatus fail(const DaemonClient::Answer& answer);
/// Something is wrong with the command line.
ExitStatus misused(const std::string& text);
/// There is no Schedule of that number, or none that is meant.
ExitStatus notFound(const std::string& text);
/// Words that cannot be taken: each fault on a line, behind `place` where there is one.
ExitStatus refuseWords(const std::vector<TextFault>& faults, const std::string& file = {});

}  // namespace quorel
