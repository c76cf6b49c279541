#include "qt/host/SaveText.h"

#include <algorithm>

#include "model/Wire.h"
#include "qt/list/ScheduleModel.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel::qt {

namespace {

/// "23:15 Sleep, after 20 min without use, Mon Tue"; empty for a Schedule that the list does not have.
std::string lineOf(const Value& schedule, const Array& schedules, const ScheduleModel& rows) {
    const auto found = std::ranges::find(schedules, schedule);
    if (found == schedules.end()) return {};
    const auto cell = [&](int column) { return rows.index(static_cast<int>(found - schedules.begin()), column); };
    QStringList days;
    for (int day = 0; day < 7; ++day) {
        if (cell(kFirstDayColumn + day).data(Qt::CheckStateRole).toInt() == Qt::Checked)
            days.append(dayName(day, DayForm::kShort));
    }
    QStringList parts = {cell(kTimeColumn).data().toString() + QLatin1Char(' ') + cell(kActionColumn).data().toString(),
                         cell(kActionColumn).data(ScheduleModel::kLineRole).toString(), days.join(QLatin1Char(' '))};
    parts.removeAll(QString());
    return stdString(parts.join(QStringLiteral(", ")));
}

}  // namespace

QString joinedText(const Value& joined, Array sent, const Array& schedules, const ScheduleModel& rows) {
    QStringList lines;
    std::int64_t others = 0;
    for (const Value& one : schedules) {
        const auto own = std::ranges::find(sent, one);
        if (own == sent.end()) ++others;
        if (own != sent.end()) sent.erase(own);
    }
    if (others > 0 && joined[wire::keys::kOthers].integer() > 0) {
        const char* const text =
            translatedCount("Others have stored {1} schedule meanwhile; it is in the list, too.",
                            "Others have stored {1} schedules meanwhile; they are in the list, too.", others);
        lines.append(qString(filled(text, {std::to_string(others)})));
    }
    for (const Value& pair : joined[wire::keys::kBoth].array()) {
        if (pair.array().size() != 2) continue;
        const std::string theirs = lineOf(pair.array()[0], schedules, rows);
        const std::string own = lineOf(pair.array()[1], schedules, rows);
        lines.append(qString(
            filled(translated("Somebody else has changed the same schedule meanwhile; both stay:\n  {1}\n  {2}"),
                   {theirs, own})));
    }
    return lines.join(QLatin1Char('\n'));
}

QString notStoredText(const EditsAnswer& answer) {
    const std::string why =
        answer.error.empty() ? translated("The daemon does not answer.") : refusalText(answer.error, answer.text);
    return qString(why + "\n" + translated("Your changes are kept here, and not stored."));
}

}  // namespace quorel::qt
