#include "model/PropertyListContent.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

constexpr sys_seconds kReference = sys_days(std::chrono::year(2001) / 1 / 1);
constexpr sys_seconds kEarliest = sys_days(std::chrono::year(1) / 1 / 1);
constexpr sys_seconds kBeyond = sys_days(std::chrono::year(10000) / 1 / 1);

/// How many bytes the character at the front takes; 0 where it is malformed, or U+FFFE or U+FFFF.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80) return 0;
    const unsigned second = byte(1);
    const bool overlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool surrogate = first == 0xed && second >= 0xa0;
    const bool beyond = first == 0xf4 && second >= 0x90;
    const bool forbidden = first == 0xef && second == 0xbf && byte(2) >= 0xbe;
    return overlong || surrogate || beyond || forbidden ? 0 : length;
}

bool isForbiddenControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

}  // namespace

bool isPropertyListText(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0 || isForbiddenControl(text.front())) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::optional<sys_seconds> calendarTime(Date date) {
    const double whole = std::floor(date.secondsSinceReference);
    const auto first = static_cast<double>((kEarliest - kReference).count());
    const auto beyond = static_cast<double>((kBeyond - kReference).count());
    // Comparisons with not-a-number are false: put this way round, that is refused as well.
    if (!(whole >= first && whole < beyond)) return {};
    return kReference + seconds(static_cast<std::int64_t>(whole));
}

Date dateOf(sys_seconds time) {
    return {static_cast<double>((time - kReference).count())};
}

Value DictionaryMaker::dictionary(Entries entries) {
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    Dictionary::Keys keys;
    std::vector<Value> values;
    keys.reserve(entries.size());
    values.reserve(entries.size());
    for (auto& [key, value] : entries) {
        if (!keys.empty() && keys.back() == key) {
            values.back() = std::move(value);
            continue;
        }
        keys.push_back(std::move(key));
        values.push_back(std::move(value));
    }
    auto& shared = _keys[keys];
    if (!shared) shared = std::make_shared<const Dictionary::Keys>(std::move(keys));
    return Dictionary(shared, std::move(values));
}

}  // namespace quorel
