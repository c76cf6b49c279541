#pragma once

#include <string>
#include <string_view>

namespace quorel {

/// What came from elsewhere, fit for a line of a journal, a terminal or a menu: at most 120 characters, in place of
/// control and direction characters and of what is no UTF-8 stands U+FFFD.
std::string plainText(std::string_view text);

}  // namespace quorel
