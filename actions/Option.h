#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/Dictionary.h"

namespace quorel {

enum class OptionKind { kFlag, kNumber, kText, kLines, kChoice, kTime };

/// One of what a choice offers.
struct Choice {
    std::string value;  ///< as it is stored and typed
    Dictionary names;   ///< by language
};

/// One option of an action: what stands under its key in the parameters, and how it is shown.
struct Option {
    std::string key;
    OptionKind kind = OptionKind::kFlag;
    Dictionary label, unit, help, says;  ///< by language; see DescriptionKeys.h
    Value standard;                      ///< what is taken where there is nothing; of its kind
    int least = 0, most = 0;             ///< of a number
    std::vector<Choice> choices;
    std::string dependsOn;  ///< the key of a flag, or empty
    bool takesWords = false;
    bool isFile = false;

    /// Its control is to be as wide as there is room.
    bool isWide() const { return kind == OptionKind::kText || kind == OptionKind::kLines; }
    /// Fit to be shown and run, whatever is stored: of the kind, within the range, or the standard.
    Value completed(const Value& stored) const;
    /// The value of a word that somebody typed; nothing where it is none that `allowed` tells.
    std::optional<Value> valueOf(std::string_view word) const;
    /// The word that `valueOf` takes for a value. Of lines: with line breaks.
    std::string wordOf(const Value& value) const;
    /// What may be typed, the same in every language: "yes, no", "1-999", "HH:MM", the values of a choice;
    /// empty where any text may.
    std::string allowed() const;
};

/// The text in that language, as "en", or else in English, or else in whichever comes first. Empty where there is none.
const std::string& inLanguage(const Dictionary& texts, std::string_view language);

/// How a key or the last part of an action's type is typed: "Only When Idle" as "only-when-idle", "WakeUp" as
/// "wake-up".
std::string typedName(std::string_view name);

}  // namespace quorel
