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

/// The order that a column and a direction put Schedules in.
class Order {
public:
    explicit Order(const Value& context)
        : _column(context[kColomnIdentifier].text()),
          _byTime(_column == schedule_keys::kInfos),
          _reversed(lowByteIsSet(context[kOrder])) {}

    /// What a Schedule is ordered by: hour and minute, or one number that is lower where the flag is set.
    using Key = std::pair<int, int>;
    Key keyOf(const Value& schedule) const {
        if (!_byTime) return {lowByteIsSet(schedule[_column]) ? 0 : 1, 0};
        return {schedule[schedule_keys::kActionHour].intValue(), schedule[schedule_keys::kActionMinute].intValue()};
    }

    ComparisonResult compare(const Key& a, const Key& b) const {
        using enum ComparisonResult;
        if (a == b && !_byTime) return Same;
        return (a < b) != _reversed ? Ascending : Descending;
    }

private:
    std::string _column;
    bool _byTime;
    bool _reversed;
};

}  // namespace

ComparisonResult sortColomnFunction(const Value& a, const Value& b, const Value& context) {
    const Order order(context);
    return order.compare(order.keyOf(a), order.keyOf(b));
}

bool VXConfigurator::tableViewShouldSelectTableColumn(const TableColumn& column) {
    const bool reversed = std::exchange(sortReversed, !sortReversed);
    const Order order(Dictionary{{kColomnIdentifier, column.identifier()}, {kOrder, reversed}});
    std::vector<std::pair<Order::Key, const Value*>> entries;  // a Schedule is asked once what it is ordered by
    entries.reserve(_scheduleArray.size());
    for (const Value& schedule : _scheduleArray) entries.emplace_back(order.keyOf(schedule), &schedule);
    // No sort can run on a comparison in which equal times come after each other, or before. What both answers agree
    // on is an order; Schedules that it leaves open stay as they were.
    std::stable_sort(entries.begin(), entries.end(), [&](const auto& a, const auto& b) {
        return order.compare(a.first, b.first) == ComparisonResult::Ascending &&
               order.compare(b.first, a.first) == ComparisonResult::Descending;
    });
    Array sorted;
    sorted.reserve(entries.size());
    for (const auto& [key, schedule] : entries) sorted.push_back(*schedule);
    _scheduleArray = std::move(sorted);
    outlets.tableView->reloadData();
    return false;
}

}  // namespace quorel
