#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorel {

/// The words of an action's description: keys of the folder's information dictionary, and what may stand under them.
/// docs/writing-a-module.md explains them to authors. "Texts" are a dictionary of one text a language, as "en".
namespace description_keys {

inline constexpr std::string_view kPrefix = "QuorelAction";  ///< of all but the next
inline constexpr std::string_view kClass = "VXEditClass";    ///< text: who shows it in the settings application
inline constexpr std::string_view kDescribedPlugIn = "VXDescribedPlugIn";  ///< the class that shows descriptions

inline constexpr std::string_view kFormat = "QuorelActionFormat";  ///< number: the version that it is written in
inline constexpr int kKnownFormat = 1;
inline constexpr std::string_view kType = "QuorelActionType";          ///< text: stored as the type of Schedules
inline constexpr std::string_view kNames = "QuorelActionNames";        ///< texts
inline constexpr std::string_view kSays = "QuorelActionSays";          ///< texts: the one line when no option says more
inline constexpr std::string_view kIsBase = "QuorelActionIsBase";      ///< flag: what the computer itself does
inline constexpr std::string_view kWakesUp = "QuorelActionWakesUp";    ///< one of the four words below
inline constexpr std::string_view kStartsUp = "QuorelActionStartsUp";  ///< the same
inline constexpr std::string_view kNever = "never";
inline constexpr std::string_view kAlways = "always";
inline constexpr std::string_view kChoice = "choice";                ///< the user's; off at first. When absent
inline constexpr std::string_view kChoiceOn = "choice-on";           ///< on at first
inline constexpr std::string_view kOptions = "QuorelActionOptions";  ///< array of dictionaries of the words below

/// Text: the program's file in the folder Resources, a name without a slash. Absent where the daemon carries the action
/// out itself.
inline constexpr std::string_view kProgram = "QuorelActionProgram";
inline constexpr std::string_view kRunsAs = "QuorelActionRunsAs";  ///< text: one of the two below
inline constexpr std::string_view kSystem = "system";              ///< in a sandbox, whoever is logged in
inline constexpr std::string_view kUser = "user";                  ///< as the user at the computer, in the session
inline constexpr std::string_view kTimeLimit = "QuorelActionTimeLimit";  ///< seconds, from 1
inline constexpr std::int64_t kDefaultTimeLimit = 600;
inline constexpr std::int64_t kMostTimeLimit = 86'400;
/// Seconds: how late a missed one may still run, from 0, which is none, to a day.
inline constexpr std::string_view kMakeUp = "QuorelActionMakeUp";
/// Text, never written by authors: a word that the dictionary had twice, of which the last counts.
inline constexpr std::string_view kDoubled = "QuorelActionDoubled";
/// Of "system" ones, what the sandbox lets through. An array of the two texts below.
inline constexpr std::string_view kNeeds = "QuorelActionNeeds";
inline constexpr std::string_view kNetwork = "network";
inline constexpr std::string_view kRoot = "root";
/// Array of texts: folders that a "system" one writes, as absolute paths.
inline constexpr std::string_view kWrites = "QuorelActionWrites";

/// Words of one option.
namespace option {

inline constexpr std::string_view kKey = "Key";          ///< text: its key in the parameters
inline constexpr std::string_view kKind = "Kind";        ///< one of those below
inline constexpr std::string_view kLabel = "Label";      ///< texts
inline constexpr std::string_view kUnit = "Unit";        ///< texts, behind it
inline constexpr std::string_view kHelp = "Help";        ///< texts: a sentence about it
inline constexpr std::string_view kSays = "Says";        ///< texts: what it adds to the line; "%@" is its value
inline constexpr std::string_view kDefault = "Default";  ///< of its kind; numbers and times have to have one
inline constexpr std::string_view kLeast = "Least";      ///< of numbers: 0 when absent
inline constexpr std::string_view kMost = "Most";        ///< of numbers: the greatest when absent
inline constexpr std::string_view kChoices = "Choices";  ///< of choices: dictionaries of "Value" and "Names"
inline constexpr std::string_view kValue = "Value";      ///< of a choice: text, stored and typed
inline constexpr std::string_view kNames = "Names";      ///< of a choice: texts
/// Text: the key of a flag before it, without which the option counts for nothing.
inline constexpr std::string_view kDependsOn = "DependsOn";
inline constexpr std::string_view kTakesWords = "TakesWords";  ///< flag, of text and lines: the words after "--"
inline constexpr std::string_view kIsFile = "IsFile";          ///< flag, of text: it may name a file

}  // namespace option

/// The most that there may be.
inline constexpr std::size_t kMostBytes =
    std::size_t{64} * 1024;  ///< of an information dictionary; a text: 120 letters
inline constexpr std::size_t kMostOptions = 16;
inline constexpr std::size_t kMostChoices = 32;
inline constexpr std::size_t kMostNames = 32;
inline constexpr std::size_t kMostWrites = 16;

}  // namespace description_keys

}  // namespace quorel
