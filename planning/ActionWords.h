#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "actions/ActionDescription.h"

namespace quorel {

/// By which words a plan's text names actions and their options: made of keys, never of labels, so that they are the
/// same in every language.
class ActionWords {
public:
    inline static constexpr std::string_view kWakeUp = "wake-up";  ///< the two flags of every action
    inline static constexpr std::string_view kStartUp = "start-up";
    inline static constexpr std::string_view kParameters = "parameters";  ///< what no word says, as JSON

    /// Of those of one type the first sound one counts.
    explicit ActionWords(std::vector<ActionDescription> descriptions = {});

    /// Null where nothing sound describes it.
    const ActionDescription* description(std::string_view type) const;
    /// The last part of the type, "wake-up"; the whole of one that is not known, or where two would be alike. Empty
    /// where no word can say it.
    std::string nameOf(std::string_view type) const;
    /// Nothing where it is no action's name. A whole type is taken whether or not it is known.
    std::optional<std::string> typeOf(std::string_view word) const;
    /// Whether two words say an action's name, as "shut down".
    bool isName(std::string_view first, std::string_view second) const;
    bool isKnown(std::string_view type) const { return _names.contains(type); }
    /// Of all that are known: "message, open, …".
    std::string names() const;

    /// Empty where no word can say it.
    static std::string optionWord(const ActionDescription& description, const Option& option);
    /// Null where there is none.
    static const Option* optionOf(const ActionDescription& description, std::string_view word);
    /// Of an action's options, the two flags among them.
    static std::string optionWords(const ActionDescription* description);

private:
    std::vector<ActionDescription> _descriptions;
    std::map<std::string, std::string, std::less<>> _names;  // by type
};

}  // namespace quorel
