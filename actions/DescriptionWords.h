#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "actions/ActionDescription.h"

namespace quorel {

/// One dictionary of a description while it is read: what is not as it has to be is written down as a fault. Numbers
/// and flags may be texts, which is all that the text form of property lists has.
class DescriptionWords {
public:
    /// `place` stands before keys in faults. All must outlive this.
    DescriptionWords(const Value& dictionary, std::string place, std::vector<DescriptionFault>& faults)
        : _dictionary(dictionary), _place(std::move(place)), _faults(faults) {}

    const Value& operator[](std::string_view key) const { return _dictionary[key]; }
    std::string where(std::string_view key) const { return _place + std::string(key); }
    void fault(std::string_view code, std::string_view key) { _faults.push_back({code, where(key)}); }
    bool has(std::string_view key) const { return _dictionary[key].isPresent(); }
    void require(std::string_view key);
    /// Every other word is a fault; of those that begin so, where a beginning is given.
    void allowOnly(std::initializer_list<std::string_view> known, std::string_view beginning = {});

    const Array& array(std::string_view key, std::size_t most);
    const std::string& text(std::string_view key);
    /// A name of letters, digits, blanks, "-", "_" and ".": what is typed on a terminal, too.
    const std::string& name(std::string_view key);
    Dictionary texts(std::string_view key);
    std::optional<int> number(std::string_view key);
    std::optional<bool> flag(std::string_view key);

private:
    const Value& _dictionary;
    const std::string _place;
    std::vector<DescriptionFault>& _faults;
};

}  // namespace quorel
