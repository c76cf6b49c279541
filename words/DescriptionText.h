#pragma once

#include <string>

namespace quorel {

/// What is wrong with an action's description, in the user's language: a code of `description_fault`, and where.
std::string descriptionFaultText(const std::string& fault, const std::string& where);

}  // namespace quorel
