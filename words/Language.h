#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "scheduler/Instant.h"

namespace quorel {

// What the product's programs say to people. The texts stand in the code in English; resources/programs has them in
// other languages. In UTF-8.

/// Has the program speak the language of its user, as the environment names it. A program that does not call it, as the
/// daemon, speaks English. Before threads are started.
void speakUsersLanguage();

/// Two letters, as "en".
std::string usersLanguage();

const char* translated(const char* english);
const char* translatedCount(const char* one, const char* many, std::int64_t count);
/// With the arguments in place of "{1}", "{2}" and so on.
std::string filled(std::string_view text, std::initializer_list<std::string_view> arguments);

/// As the user's country writes it, in the system's time zone: "23:15", "Mon 2026-11-23 23:15", "3 hours".
std::string timeText(Instant instant);
std::string momentText(Instant instant);
std::string durationText(Seconds seconds);

}  // namespace quorel
