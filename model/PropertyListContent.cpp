#include "model/PropertyListContent.h"

#include <algorithm>
#include <cmath>

#include "model/Utf8.h"

namespace quorel {

namespace {

using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

constexpr sys_seconds kReference = sys_days(std::chrono::year(2001) / 1 / 1);
constexpr sys_seconds kEarliest = sys_days(std::chrono::year(1) / 1 / 1);
constexpr sys_seconds kBeyond = sys_days(std::chrono::year(10000) / 1 / 1);

}  // namespace

bool isPropertyListText(std::string_view text) {
    for (takeAscii(text); !text.empty(); takeAscii(text)) {
        const char32_t c = takeCharacter(text);
        const bool isForbiddenControl = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
        if (c == kNoCharacter || c == 0xFFFE || c == 0xFFFF || isForbiddenControl) return false;
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
