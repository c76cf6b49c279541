#include "planning/Merge.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "model/PropertyList.h"
#include "planning/PreferencesCheck.h"

namespace quorel {

namespace {

constexpr std::array kOptions = {preferences::kCheckUpdates, preferences::kCheckUpdatesFrequency,
                                 preferences::kShowInMenuBar, preferences::kEnableNetworkAdministration};

struct Entry {
    std::string key;  // the same for what a file has alike
    Value schedule;
};
using List = std::vector<Entry>;
using Counts = std::map<std::string_view, std::ptrdiff_t>;

List listOf(const Value& preferences) {
    List list;
    for (const Value& schedule : preferences[preferences::kScheduleArray].array())
        if (schedule.isDictionary()) list.push_back({encodePropertyList(schedule).value_or(""), schedule});
    return list;
}

bool areEqual(const List& a, const List& b) {
    return std::ranges::equal(a, b, {}, &Entry::key, &Entry::key);
}

Counts countsOf(const List& list) {
    Counts counts;
    for (const Entry& entry : list) ++counts[entry.key];
    return counts;
}

/// How often each is to be in the result.
Counts wantedOf(const List& stored, const List& base, const List& sent) {
    Counts inStored = countsOf(stored), inBase = countsOf(base), inSent = countsOf(sent), wanted;
    for (const List* list : {&stored, &sent}) {
        for (const Entry& entry : *list) {
            const std::ptrdiff_t theirs = inStored[entry.key], own = inSent[entry.key];
            wanted[entry.key] = theirs == own ? own : std::max(theirs + own - inBase[entry.key], std::ptrdiff_t{0});
        }
    }
    return wanted;
}

/// For each of `from` the index of its like in `to`: of the first the first, of the second the second.
std::vector<std::optional<std::size_t>> places(const List& from, const List& to) {
    std::map<std::string_view, std::vector<std::size_t>> found;
    for (std::size_t i = to.size(); i-- > 0;) found[to[i].key].push_back(i);
    std::vector<std::optional<std::size_t>> result;
    for (const Entry& entry : from) {
        auto& left = found[entry.key];
        auto& place = result.emplace_back();
        if (left.empty()) continue;
        place = left.back();
        left.pop_back();
    }
    return result;
}

/// Whether what both have stands in another order.
bool isReordered(const List& base, const List& sent) {
    std::size_t next = 0;
    for (const auto& place : places(base, sent)) {
        if (place && *place < next) return true;
        if (place) next = *place;
    }
    return false;
}

/// For each of `base` that is not in `changed` what stands there in its place, if anything does.
std::vector<const Entry*> replacements(const List& base, const List& changed) {
    std::vector<const Entry*> result(base.size());
    const auto kept = places(base, changed);
    const auto known = places(changed, base);
    std::size_t next = 0;  // in `changed`, behind what has been dealt with
    for (std::size_t i = 0; i < base.size(); ++i) {
        if (kept[i])
            next = *kept[i] + 1;
        else if (next < changed.size() && !known[next])
            result[i] = &changed[next++];
    }
    return result;
}

/// `changed`, with what its entries replace in front of them: the place of that is known where they are not.
List withReplaced(const List& base, const List& changed) {
    std::multimap<const Entry*, const Entry*> replaced;
    const auto by = replacements(base, changed);
    for (std::size_t i = 0; i < base.size(); ++i)
        if (by[i]) replaced.emplace(by[i], &base[i]);
    List result;
    for (const Entry& entry : changed) {
        const auto [begin, end] = replaced.equal_range(&entry);
        for (auto one = begin; one != end; ++one) result.push_back(*one->second);
        result.push_back(entry);
    }
    return result;
}

/// Takes what is wanted from `first` in its order, and what is lacking then from `second`, each behind its predecessor
/// there, or in front. With `behindOthers` also behind what follows a predecessor that stays in `first` alone.
List arranged(const List& first, const List& second, const Counts& wanted, bool behindOthers) {
    Counts lacking = wanted, left = countsOf(second);
    std::vector<bool> isKept;
    for (const Entry& entry : first) isKept.push_back(lacking[entry.key] > 0 && lacking[entry.key]-- > 0);
    std::vector<List> behind(first.size() + 1);  // those at the front come first
    const auto like = places(second, first);
    const auto pastOthers = [&](std::size_t place) {
        const bool follows = behindOthers && (place == 0 || isKept[place - 1]);
        while (follows && place < first.size() && !left.contains(first[place].key)) ++place;
        return place;
    };
    std::size_t place = pastOthers(0);
    for (std::size_t i = 0; i < second.size(); ++i) {
        const Entry& entry = second[i];
        if (left[entry.key]-- <= lacking[entry.key])  // of those alike the last are the added ones
            behind[place].push_back(entry);
        else if (like[i])
            place = pastOthers(*like[i] + 1);
    }
    List result = behind.front();
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (isKept[i]) result.push_back(first[i]);
        result.insert(result.end(), behind[i + 1].begin(), behind[i + 1].end());
    }
    return result;
}

std::vector<std::pair<Value, Value>> changedByBoth(const List& stored, const List& base, const List& sent) {
    std::vector<std::pair<Value, Value>> result;
    const auto theirs = replacements(base, stored), own = replacements(base, sent);
    for (std::size_t i = 0; i < base.size(); ++i)
        if (theirs[i] && own[i] && theirs[i]->key != own[i]->key)
            result.emplace_back(theirs[i]->schedule, own[i]->schedule);
    return result;
}

/// How many of `result` are not in `sent`.
std::size_t unsent(const List& result, const List& sent) {
    const auto found = places(result, sent);
    return static_cast<std::size_t>(std::ranges::count(found, std::optional<std::size_t>()));
}

List joined(const List& stored, const List& base, const List& sent) {
    if (areEqual(sent, base)) return stored;
    if (areEqual(stored, base)) return sent;
    const Counts wanted = wantedOf(stored, base, sent);
    if (isReordered(base, sent)) return arranged(sent, stored, wanted, false);
    return arranged(stored, withReplaced(base, sent), wanted, true);
}

Value valueOf(const List& list) {
    Array schedules;
    for (const Entry& entry : list) schedules.push_back(entry.schedule);
    return schedules;
}

bool haveEqualOptions(const Value& a, const Value& b) {
    return std::ranges::all_of(kOptions, [&](std::string_view key) { return a[key] == b[key]; });
}

}  // namespace

Merged merge(const Value& stored, const Value& base, bool nothingRead, const Value& sent) {
    const List inPlace = listOf(stored), before = listOf(base), own = listOf(sent);
    const bool changesNothing = haveEqualOptions(base, sent) && areEqual(before, own);
    if (!stored.isDictionary()) return {changesNothing && !nothingRead ? Value() : sent, 0, {}};
    if (changesNothing) return {{}, unsent(inPlace, own), {}};
    Value result = sent;
    for (const std::string_view key : kOptions)
        if (base[key] == sent[key] && !faultInPreference(key, stored[key])) result = result.with(key, stored[key]);
    const List list = joined(inPlace, before, own);
    const bool isInPlace = haveEqualOptions(result, stored) && areEqual(list, inPlace);
    return {isInPlace ? Value() : result.with(preferences::kScheduleArray, valueOf(list)), unsent(list, own),
            changedByBoth(inPlace, before, own)};
}

}  // namespace quorel
