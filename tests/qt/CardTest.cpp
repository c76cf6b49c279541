#include <QLabel>
#include <QPushButton>
#include <ctime>

#include "model/Upcoming.h"
#include "model/Wire.h"
#include "qt/toolkit/Colours.h"
#include "tests/qt/WindowTest.h"

namespace quorel::test {
namespace {

namespace keys = wire::keys;
using CardTest = WindowTest;

Value sleepIn(Seconds seconds, std::string_view step) {
    const Instant at = std::time(nullptr) + seconds;
    return Dictionary{{keys::kToken, std::to_string(at)},
                      {keys::kDue, at},
                      {keys::kAt, at},
                      {keys::kAction, schedule_keys::kSleepType},
                      {keys::kStep, step}};
}

/// What can be said to it, and what it says.
TEST_F(CardTest, OffersWhatCanBeDoneWithWhatComes) {
    open();
    DaemonView::Told told;
    const auto offers = [&](const DaemonView::Told& what) {
        window.next->show(what);
        QStringList texts;
        for (auto* const button : window.next->findChildren<QPushButton*>())
            if (button->isVisible()) texts.append(button->text());
        return texts.join(QLatin1Char(' ')).toStdString();
    };
    const auto says = [&](const char* text) {
        for (auto* const label : window.next->findChildren<QLabel*>())
            if (label->isVisible() && label->text().contains(QLatin1String(text))) return true;
        return false;
    };
    EXPECT_EQ(offers(told), "");
    EXPECT_TRUE(says("is not running") && says("until it runs"));
    told.isThere = true;
    told.status =
        Dictionary{{keys::kActs, 1}, {keys::kWakeAlarm, Dictionary{{keys::kAt, 1}, {keys::kFault, "no-clock"}}}};
    EXPECT_EQ(offers(told), "Pause");
    EXPECT_TRUE(says("Nothing is planned") && says("no clock with an alarm"));
    const Value kept = sleepIn(-60, wire::step::kRunning).with(keys::kUntil, std::time(nullptr) + 60);
    told.upcoming = Array{kept, sleepIn(600, wire::step::kSkipped), sleepIn(1200, wire::step::kPlanned)};
    EXPECT_EQ(offers(told), "Let it sleep Undo skip Postpone Skip Pause");
    EXPECT_TRUE(says("kept awake until") && says("in 20 min"));
    const Value& skipped = told.upcoming.array()[1];
    EXPECT_EQ(
        leftOutUntil(told.upcoming.array(), {}, skipped[keys::kDue].integer(), std::string(schedule_keys::kSleepType)),
        skipped[keys::kDue].integer() + 1);
    told.pauses = Array{Dictionary{{keys::kToken, "1"}, {keys::kFrom, 1}, {keys::kUntil, std::time(nullptr) + 60}}};
    EXPECT_EQ(offers(told), "Let it sleep Undo skip Postpone Skip Resume");
    EXPECT_TRUE(says("Pause: until"));
}

TEST_F(CardTest, WhatHappenedStaysWhereSomebodyReads) {
    const Value ran = Dictionary{{keys::kCode, wire::outcome::kRan}, {keys::kAt, 1}};
    for (const std::size_t many : {1U, 1U, 2U}) {
        const auto shown = static_cast<std::size_t>(window.happened->topLevelItemCount());
        window.showHappened(Array(many, ran));
        EXPECT_EQ(window.happened->currentItem() == nullptr, many != shown);
        window.happened->setCurrentItem(window.happened->topLevelItem(0));
    }
}

TEST_F(CardTest, FollowsTheThemeThatIsChosenMeanwhile) {
    open();
    const QPalette before = QApplication::palette(), dark(QColor(40, 40, 40));
    const auto* const fault = qt::makeLabel(&window, qt::Weight::kFault);
    window.showHappened({Dictionary{{keys::kCode, wire::outcome::kFailed}, {keys::kAt, 1}}});
    QApplication::setPalette(dark);
    settle();
    EXPECT_EQ(fault->palette().color(QPalette::WindowText), qt::faultColour(dark));
    EXPECT_EQ(window.happened->topLevelItem(0)->foreground(0).color(), qt::faultColour(dark));
    QApplication::setPalette(before);
}

TEST_F(CardTest, ARowSaysWhatItWasPostponedTo) {
    const Value daily = plan({7})[preferences::kScheduleArray].array().front();
    DaemonView::Told told;
    const Instant due = qt::Forecast().of(daily, told, {}).at.value_or(0);
    for (const Instant planned : {due, due - kDay}) {  // the second one's time has passed
        told.upcoming =
            Array{sleepIn(0, wire::step::kPostponed).with(keys::kDue, planned).with(keys::kAt, planned + 60)};
        EXPECT_EQ(qt::Forecast().of(daily, told, {}).at, planned + 60);
    }
}

}  // namespace
}  // namespace quorel::test
