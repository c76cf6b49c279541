#pragma once

#include <string>
#include <string_view>

namespace quorel {

/// What the agent says to the user. Plain text.
struct Texts {
    const char* newVersionTitle;
    const char* newVersionBefore;  ///< in front of the version
    const char* newVersionAfter;   ///< behind it
    const char* download;
    const char* upToDateTitle;
    const char* upToDate;
    const char* failedTitle;
    const char* failed;
};

/// French or English, by a locale's name such as "fr_CA.UTF-8".
const Texts& textsForLocale(std::string_view locale);
/// The locale that the environment asks messages to be in.
std::string messagesLocale();

}  // namespace quorel
