#include <QLabel>
#include <QPushButton>
#include <atomic>
#include <thread>

#include "model/Wire.h"
#include "tests/qt/WindowTest.h"

namespace quorel::test {
namespace {

using HostTest = WindowTest;

TEST_F(HostTest, UnlocksWhereNobodyNeedsToBeAsked) {
    open();
    EXPECT_FALSE(window.lockBar->isVisible());
    EXPECT_TRUE(window.add->isEnabled());
    EXPECT_EQ(center.daemonPings, 1);
}

TEST_F(HostTest, SaysAtOnceThatTheDaemonHasGone) {
    open();
    const QString before = window.daemonText->text();
    center.daemonAlive = false;
    host.lookAtPrograms();
    settle();
    EXPECT_NE(window.daemonText->text(), before);
}

TEST_F(HostTest, StaysLockedWhereSomebodyHasToBeAsked) {
    memory.authorization.granted = false;
    open();
    EXPECT_TRUE(window.lockBar->isVisible());
    EXPECT_FALSE(window.add->isEnabled());
    select(1);
    EXPECT_EQ(host.controller().configurator()->outlets.tableView->selectedRow(), -1);
    press(Qt::Key_Space);
    press(Qt::Key_Delete);
    EXPECT_EQ(hours(), "7 8 9 ");
    window.lockButton->click();
    EXPECT_TRUE(window.noticeBar->isVisible());
    memory.authorization.grantedWhenAsked = true;
    window.lockButton->click();
    EXPECT_FALSE(window.lockBar->isVisible());
    EXPECT_TRUE(window.add->isEnabled());
}

TEST_F(HostTest, ClosingAsksOnlyWhoHasEdits) {
    open();
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(saved(), "nothing");

    window.show();
    select(0);
    press(Qt::Key_Down, Qt::AltModifier);  // which posts nothing, and is an edit all the same
    EXPECT_TRUE(window.apply->isEnabled());
    answer("Cancel");
    window.close();
    EXPECT_TRUE(window.isVisible());
    answer("Apply");
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(saved(), "8 7 9 ");
}

TEST_F(HostTest, DiscardingSavesNothing) {
    open();
    select(2);
    press(Qt::Key_Delete);
    answer("Discard changes");
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(saved(), "nothing");
}

TEST_F(HostTest, WhatIsNotStoredStays) {
    open();
    center.answer = {false, wire::kStorageFailed, "the disk is full", {}};
    for (const bool daemonAlive : {true, false}) {
        center.handles = false;
        center.daemonAlive = daemonAlive;
        select(0);
        press(Qt::Key_Delete);
        window.apply->click();
        EXPECT_EQ(hours(), daemonAlive ? "8 9 " : "9 ");
        EXPECT_TRUE(window.apply->isEnabled());
        EXPECT_TRUE(window.noticeText->text().startsWith(daemonAlive
                                                             ? QStringLiteral("The daemon refused: the disk is full")
                                                             : QStringLiteral("The daemon does not")));
    }
    answer("Apply");
    window.close();
    EXPECT_TRUE(window.isVisible());
    center.handles = center.daemonAlive = true;
    window.apply->click();
    EXPECT_EQ(saved(), "9 ");
    EXPECT_FALSE(window.noticeBar->isVisible());
    EXPECT_FALSE(window.apply->isEnabled());
}

TEST_F(HostTest, SaysWhatASaveWasJoinedWith) {
    open();
    const Array changed = plan({7, 8, 9, 10})[preferences::kScheduleArray].array();
    center.onDaemon = [&](const Notification&) { store(plan({7, 8, 9, 10})); };
    center.answer.joined =
        Dictionary{{wire::keys::kOthers, 1}, {wire::keys::kBoth, Array{Value(Array{changed[3], changed[0]})}}};
    select(0);
    press(Qt::Key_Delete);
    window.apply->click();
    const QString told = window.noticeText->text();
    EXPECT_TRUE(told.startsWith(QStringLiteral("Others have stored 2 schedules")) &&
                told.contains(QStringLiteral("both stay:\n  10:00")))
        << told.toStdString();
}

TEST_F(HostTest, TakesADeletionBack) {
    open();
    select(1);
    press(Qt::Key_Delete);
    EXPECT_EQ(hours(), "7 9 ");
    EXPECT_TRUE(window.undo->isVisible());
    window.undo->click();
    EXPECT_EQ(hours(), "7 8 9 ");
    EXPECT_FALSE(window.undo->isVisible());
    EXPECT_FALSE(window.apply->isEnabled());
    select(1);
    press(Qt::Key_Delete);
    window.list->schedules().setData(window.list->schedules().index(0, qt::kSwitchColumn), {}, Qt::CheckStateRole);
    EXPECT_FALSE(window.undo->isVisible());  // it would take that back, too
}

TEST_F(HostTest, TakesNothingButStaysPaintedWhileASaveIsUnderWay) {
    open();
    select(0);
    press(Qt::Key_Delete);
    std::atomic<bool> isAnswered = false;
    center.onDaemon = [&](const Notification& notification) {
        while (!isAnswered) std::this_thread::yield();
        store(notification.userInfo);
    };
    QTimer::singleShot(0, &window, [&] {
        const long painted = window.list->drawing().paintedRows;
        press(Qt::Key_Delete);
        window.close();
        changeFile();
        QTest::qWait(1'000);  // long enough for it to be read
        window.list->viewport()->update();
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.list->drawing().paintedRows > painted; }, 20'000));
        EXPECT_EQ(hours(), "8 9 ");
        isAnswered = true;
    });
    window.apply->click();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(saved(), "8 9 ");
}

TEST_F(HostTest, ShowsWhatOthersHaveStoredUnlessItIsEdited) {
    open();
    const auto others = [&](const Value& given) {
        store(given);
        changeFile();
    };
    others(plan({5}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return hours() == "5 "; }, 20'000));
    others(plan({5, 6}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return hours() == "5 6 "; }, 20'000));
    select(0);
    press(Qt::Key_Delete);
    others(plan({1, 2}));
    QTest::qWait(1'000);  // long enough for it to be taken
    EXPECT_EQ(hours(), "6 ");
    window.revert->click();
    EXPECT_EQ(hours(), "1 2 ");
}

TEST_F(HostTest, ARowThatIsPaintedChangesNothingOfTheSheet) {
    Value preferences = plan({7, 8});
    Array list = preferences[preferences::kScheduleArray].array();
    for (std::size_t row = 0; row < list.size(); ++row)
        list[row] = list[row].with(schedule_keys::kActionParameters, Dictionary{{"Own", static_cast<int>(row)}});
    store(preferences.with(preferences::kScheduleArray, list));
    open();
    select(0);
    saveSheet();
    window.edit->click();
    const Array& after = host.controller().configurator()->scheduleArray();
    EXPECT_EQ(after[0][schedule_keys::kActionParameters]["Own"].intValue(), 0);
}

TEST_F(HostTest, NothingStoredIsASuggestion) {
    memory.files.files.clear();
    open();
    EXPECT_TRUE(window.suggestion->isVisible());
    EXPECT_EQ(hours(), "23 7 ");
    window.close();
    EXPECT_EQ(saved(), "nothing");
    window.show();
    window.useThis->click();
    EXPECT_EQ(saved(), "23 7 ");
    EXPECT_FALSE(window.suggestion->isVisible());
}

TEST_F(HostTest, AnOwnBeginningTakesThePlaceOfTheSuggestion) {
    memory.files.files.clear();
    open();
    saveSheet();
    window.makeOwn->click();
    EXPECT_EQ(hours(), "23 ");
    EXPECT_TRUE(window.apply->isEnabled());
    window.apply->click();
    EXPECT_EQ(saved(), "23 ");
}

}  // namespace
}  // namespace quorel::test
