#pragma once

#include "model/Value.h"

namespace quorel {

/// Keys of an action summary, the value that the action cell (`VXConfiguratorCell`) draws.
namespace summary {
inline constexpr const char* kName = "Name";        ///< text: what the module calls itself
inline constexpr const char* kAction = "Action";    ///< text: what it will do
inline constexpr const char* kTime = "Time";        ///< text: when, in the user's short style
inline constexpr const char* kStartup = "Startup";  ///< boolean: the computer is started up for it
inline constexpr const char* kWakeUp = "Wake Up";   ///< boolean: the computer is woken up for it
}  // namespace summary

}  // namespace quorel
