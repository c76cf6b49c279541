#pragma once

#include <string>

namespace quorel {

/// What a user is called, for people to read; the number where that is not known.
std::string nameOfUser(unsigned user);

}  // namespace quorel
