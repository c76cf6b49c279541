#include <algorithm>

#include "configurator/VXConfigurator.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"

namespace quorel {

namespace {

constexpr std::string_view kColomnIdentifier = "Colomn identifier";
constexpr std::string_view kOrder = "Order";

bool sortReversed = false;  // of the next header click, for the whole process

bool lowByteIsSet(const Value& value) {
    return (static_cast<unsigned>(value.intValue()) & 0xFFu) != 0;
}

ComparisonResult swapped(ComparisonResult result) {
    return static_cast<ComparisonResult>(-static_cast<int>(result));
}

ComparisonResult compareTimes(const Value& a, const Value& b) {
    const int hourOfA = a[schedule_keys::kActionHour].intValue();
    const int hourOfB = b[schedule_keys::kActionHour].intValue();
    if (hourOfA != hourOfB) return hourOfA < hourOfB ? ComparisonResult::Ascending : ComparisonResult::Descending;
    const bool earlier = a[schedule_keys::kActionMinute].intValue() < b[schedule_keys::kActionMinute].intValue();
    return earlier ? ComparisonResult::Ascending : ComparisonResult::Descending;
}

ComparisonResult compareFlags(bool a, bool b) {
    if (a == b) return ComparisonResult::Same;
    return a ? ComparisonResult::Ascending : ComparisonResult::Descending;
}

/// Orders Schedules by one number each, as sortColomnFunction orders them unreversed.
class SortKey {
public:
    explicit SortKey(std::string_view identifier)
        : _byTime(identifier == schedule_keys::kInfos),
          _first(_byTime ? schedule_keys::kActionHour : identifier),
          _second(schedule_keys::kActionMinute) {}

    std::int64_t operator()(const Value& schedule) {
        if (!_byTime) return lowByteIsSet(_first(schedule)) ? 0 : 1;
        constexpr std::int64_t kMinutesOffset = std::int64_t{1} << 31;
        return std::int64_t{_first(schedule).intValue()} * (kMinutesOffset * 2) +
               (_second(schedule).intValue() + kMinutesOffset);
    }

private:
    bool _byTime;
    KeyReader _first;
    KeyReader _second;
};

// No sort can run on a comparison in which equal times come after each other. Sorting stably by numbers gives what
// that comparison decides, and leaves the order of equal Schedules alone.
void sortSchedules(Array& schedules, std::string_view identifier, bool reversed) {
    struct Entry {
        std::int64_t key;
        std::size_t from;
    };
    std::vector<Entry> order;
    order.reserve(schedules.size());
    SortKey keyOf(identifier);
    for (const Value& schedule : schedules) {
        const std::int64_t key = keyOf(schedule);
        order.push_back({reversed ? ~key : key, order.size()});
    }
    std::stable_sort(order.begin(), order.end(), [](const Entry& a, const Entry& b) { return a.key < b.key; });
    Array sorted;
    sorted.reserve(schedules.size());
    for (const Entry& entry : order) sorted.push_back(std::move(schedules[entry.from]));
    schedules = std::move(sorted);
}

}  // namespace

ComparisonResult sortColomnFunction(const Value& a, const Value& b, const Value& context) {
    const Value& identifier = context[kColomnIdentifier];
    const std::string& key = identifier.text();
    const ComparisonResult result =
        key == schedule_keys::kInfos ? compareTimes(a, b) : compareFlags(lowByteIsSet(a[key]), lowByteIsSet(b[key]));
    return lowByteIsSet(context[kOrder]) ? swapped(result) : result;
}

bool VXConfigurator::tableViewShouldSelectTableColumn(TableView&, const TableColumn& column) {
    const bool reversed = std::exchange(sortReversed, !sortReversed);
    sortSchedules(_scheduleArray, column.identifier(), reversed);
    outlets.tableView->reloadData();
    return false;
}

}  // namespace quorel
