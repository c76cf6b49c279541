#pragma once

#include <functional>
#include <string>

#include "model/Value.h"

namespace quorel {

/// Keys of an action summary, the value that the action cell (`VXConfiguratorCell`) draws.
namespace summary {
inline constexpr const char* kName = "Name";        ///< text: what the module calls itself
inline constexpr const char* kAction = "Action";    ///< text: what it will do
inline constexpr const char* kTime = "Time";        ///< text: when, in the user's short style
inline constexpr const char* kStartup = "Startup";  ///< boolean: the computer is started up for it
inline constexpr const char* kWakeUp = "Wake Up";   ///< boolean: the computer is woken up for it

/// The image that shows what is needed of the computer.
const char* dotImageName(bool startup, bool wakeUp);
/// That of a summary; null where nothing is needed.
const char* dotNameOf(const Value& actionSummary);
/// The summary as one sentence, the needs in words: what assistive tools read. Whatever is missing or of another kind
/// is left out. `localized` looks a text of the product up.
std::string sentenceOf(const Value& actionSummary, const std::function<std::string(const char* key)>& localized);
}  // namespace summary

}  // namespace quorel
