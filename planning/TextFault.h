#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorel {

/// What of a plan's text cannot be taken. Whoever shows it makes the sentence.
struct TextFault {
    std::string_view code;   ///< one of those below
    std::string word;        ///< what stands there
    std::string allowed;     ///< what might, as "yes, no"; perhaps empty
    std::size_t column = 1;  ///< characters from 1
    std::size_t line = 1;
    friend bool operator==(const TextFault&, const TextFault&) = default;
};

namespace text_fault {

inline constexpr std::string_view kTime = "time";             ///< no time of day
inline constexpr std::string_view kDays = "days";             ///< no days of the week
inline constexpr std::string_view kAction = "action";         ///< no action of that name, nor anything else
inline constexpr std::string_view kWord = "word";             ///< nothing that this action takes
inline constexpr std::string_view kOption = "option";         ///< the action has no such option
inline constexpr std::string_view kValue = "value";           ///< not for this option
inline constexpr std::string_view kFixed = "fixed";           ///< the action leaves no choice there
inline constexpr std::string_view kTwice = "twice";           ///< said already
inline constexpr std::string_view kNoTime = "no-time";        ///< the time is missing
inline constexpr std::string_view kNoAction = "no-action";    ///< the action is missing
inline constexpr std::string_view kWords = "words";           ///< the action takes no such words behind "--"
inline constexpr std::string_view kProgram = "program";       ///< no whole path of a program
inline constexpr std::string_view kNoProgram = "no-program";  ///< the program is missing
inline constexpr std::string_view kQuote = "quote";           ///< a quotation mark that nothing closes
inline constexpr std::string_view kJson = "json";             ///< no JSON, or not of a dictionary
inline constexpr std::string_view kEmpty = "empty";           ///< no line of the text says anything
inline constexpr std::string_view kDeep = "deep";             ///< JSON of more levels than can be stored
inline constexpr std::string_view kText = "text";             ///< no UTF-8, or control characters

}  // namespace text_fault

}  // namespace quorel
