#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "actions/Option.h"
#include "model/Dictionary.h"

namespace quorel {

/// What is wrong with a description. Whoever shows it makes the sentence.
struct DescriptionFault {
    std::string_view code;  ///< one of those below
    std::string key;        ///< where, as "QuorelActionOptions 2 Default"; empty where it is the whole
    friend bool operator==(const DescriptionFault&, const DescriptionFault&) = default;
};

namespace description_fault {

inline constexpr std::string_view kUntrusted = "untrusted";     ///< others could have changed it, or it is a link
inline constexpr std::string_view kUnreadable = "unreadable";   ///< no information dictionary
inline constexpr std::string_view kNoWords = "no-words";        ///< it does not say what action it is
inline constexpr std::string_view kNoProgram = "no-program";    ///< it has nothing to run
inline constexpr std::string_view kMalformed = "malformed";     ///< what it says about its program makes no sense
inline constexpr std::string_view kBadProgram = "bad-program";  ///< the program is missing, no program or untrusted
inline constexpr std::string_view kTaken = "taken";             ///< a module before it is this action already
inline constexpr std::string_view kFormat = "format";           ///< a version that is not known
inline constexpr std::string_view kMissing = "missing";         ///< a word is missing
inline constexpr std::string_view kUnknown = "unknown";         ///< a word that has no meaning there
inline constexpr std::string_view kKind = "kind";               ///< something of another kind than it has to be
inline constexpr std::string_view kRange = "range";             ///< out of its range
inline constexpr std::string_view kDoubled = "doubled";         ///< the same word, option or choice twice
inline constexpr std::string_view kTooMany = "too-many";        ///< more than there may be
inline constexpr std::string_view kText = "text";               ///< too long, or with markup or control characters

}  // namespace description_fault

/// The information dictionary of a folder out of its file, in XML or as text; absent where it is none, or too large.
Value informationDictionary(std::string_view bytes);

/// Whether the computer is woken or started for an action.
struct FlagRule {
    bool isFixed = false;   ///< the user has no choice
    bool standard = false;  ///< what a fresh Schedule gets

    bool completed(const Value& stored) const { return isFixed ? standard : stored.intValue() != 0; }
};

/// An action as its folder describes it: all that programs and faces know of it, without a class. Immutable once read.
struct ActionDescription {
    std::string bundle;                    ///< its folder's name
    std::string type;                      ///< of Schedules; empty where it says none
    Dictionary names;                      ///< by language, plain text
    std::vector<DescriptionFault> faults;  ///< none: it is sound

    bool isBase = false;          ///< what the computer itself does
    Dictionary says;              ///< by language
    FlagRule wakesUp, startsUp;   ///< from sleep; from off
    std::vector<Option> options;  ///< none of one that is not sound

    std::string program;  ///< the file in Resources; empty where the daemon carries the action out
    bool isSystem = false;
    std::int64_t limit = 0;   ///< seconds
    std::int64_t makeUp = 0;  ///< seconds
    bool mayUseNetwork = false;
    bool isRoot = false;
    std::vector<std::string> writes;  ///< absolute paths of folders

    /// Of any value; whether there is such a program is another question.
    static ActionDescription from(std::string bundle, const Value& informationDictionary);
    static ActionDescription read(std::string bundle, std::string_view informationDictionary);

    bool isSound() const { return faults.empty(); }
    const Option* option(std::string_view key) const;  ///< null when there is none
    /// A number, a choice or a time that depends on the flag before it: a form has it on that one's line, and its help
    /// where the pointer rests.
    bool goesOn(std::size_t option) const;
    /// Parameters of a fresh Schedule.
    Value standards() const;
    /// Every described option and both flags, fit to be shown and run, whatever is stored; what is not described stays.
    Value completed(const Value& parameters) const;
    /// What it does, in one line. The parameters are completed first.
    std::string line(const Value& parameters, std::string_view language) const;
    /// The parameters with the words that somebody typed after "--": a text takes one of them; lines behind it all that
    /// are left, a line each; lines that come first take all, as one text, which is prose then. Nothing where a word is
    /// unfit or nobody takes it.
    std::optional<Value> withWords(const Value& parameters, std::span<const std::string> words) const;
    /// As the daemon tells it of its modules.
    Value value() const;
};

}  // namespace quorel
