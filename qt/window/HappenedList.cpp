#include "qt/window/HappenedList.h"

#include <QEvent>
#include <QHeaderView>
#include <algorithm>
#include <array>
#include <ctime>
#include <tuple>
#include <utility>

#include "model/Wire.h"
#include "qt/toolkit/Colours.h"
#include "qt/toolkit/Text.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/WhenText.h"

namespace quorel::qt {

namespace {

namespace keys = wire::keys;

enum Sort { kWell, kLeftOut, kFailed };

Sort sortOf(std::string_view code) {
    constexpr std::array kGood = {outcome::kSlept,       outcome::kShutDown,     outcome::kWokeUp,
                                  outcome::kStarted,     outcome::kAwakeAlready, outcome::kRan,
                                  outcome::kBackToSleep, outcome::kKeptAwake};
    constexpr std::array kBad = {outcome::kFailed,  outcome::kTimedOut, outcome::kNotStarted, outcome::kMissed,
                                 outcome::kRefused, outcome::kGaveUp,   outcome::kStateLost,  outcome::kUnknown};
    if (std::ranges::find(kGood, code) != kGood.end()) return kWell;
    return std::ranges::find(kBad, code) != kBad.end() ? kFailed : kLeftOut;
}

}  // namespace

HappenedList::HappenedList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(4);
    setHeaderLabels({qString(translated("Result")), qString(translated("Time")), qString(translated("Action")),
                     qString(translated("What became of it"))});
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(SingleSelection);
    setAccessibleName(qString(translated("What happened")));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    header()->setStretchLastSection(true);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(0, QHeaderView::Fixed);
    header()->resizeSection(0, fontMetrics().height() * 2);
}

/// Failures are marked in a colour of the theme's.
void HappenedList::changeEvent(QEvent* event) {
    QTreeWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) show(std::exchange(_outcomes, {}), _most);
}

void HappenedList::show(const Array& outcomes, std::size_t most) {
    const QDate today = QDate::currentDate();
    if (std::tie(outcomes, most, today) == std::tie(_outcomes, _most, _day)) return;  // somebody may be reading
    _outcomes = outcomes;
    _most = most;
    _day = today;
    clear();
    const Instant now = std::time(nullptr);
    for (auto one = outcomes.rbegin(); one != outcomes.rend() && most > 0; ++one, --most) {
        const Sort sort = sortOf((*one)[keys::kCode].text());
        const Instant due = (*one)[keys::kDue].integer();
        const std::string sentence = outcomeText(*one);
        auto* const item =
            new QTreeWidgetItem(this, {QString::fromUtf8(sort == kWell     ? "✓"
                                                         : sort == kFailed ? "✗"
                                                                           : "–"),
                                       qString(whenText(due != 0 ? due : (*one)[keys::kAt].integer(), now)),
                                       due != 0 ? qString(actionName(*one)) : QStringLiteral("–"), qString(sentence)});
        const char* const spoken = sort == kWell     ? translated("done")
                                   : sort == kFailed ? translated("failed")
                                                     : translated("not done");
        item->setData(0, Qt::AccessibleTextRole, qString(spoken));
        item->setSizeHint(0, {0, fontMetrics().height() * 3 / 2});
        item->setToolTip(3, qString(sentence));
        if (sort != kFailed) continue;
        for (const int column : {0, 3}) item->setForeground(column, faultColour(palette()));
    }
}

}  // namespace quorel::qt
