#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>

#include "tests/qt/WindowTest.h"

namespace quorel::test {
namespace {

using ListTest = WindowTest;

TEST_F(ListTest, TogglesByKeyboardAndMouse) {
    open();
    const auto isOn = [&](std::string_view key) {
        return host.controller().configurator()->scheduleArray()[1][key].intValue();
    };
    window.list->setCurrentIndex(window.list->schedules().index(1, qt::kSwitchColumn));
    press(Qt::Key_Space);
    EXPECT_EQ(isOn(schedule_keys::kIsEnabled), 0);
    for (int i = 0; i < qt::kFirstDayColumn; ++i) press(Qt::Key_Right);
    press(Qt::Key_Space);
    EXPECT_EQ(isOn(schedule_keys::kActiveOnDays[0]), 0);
    // Two quick clicks are two.
    const QRect tuesday = window.list->visualRect(window.list->schedules().index(1, qt::kFirstDayColumn + 1));
    QTest::mouseClick(window.list->viewport(), Qt::LeftButton, Qt::NoModifier, tuesday.center());
    EXPECT_EQ(isOn(schedule_keys::kActiveOnDays[1]), 0);
    const QPoint place = tuesday.center();
    for (const auto type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, place, window.list->viewport()->mapToGlobal(place), Qt::LeftButton, Qt::NoButton, {});
        QApplication::sendEvent(window.list->viewport(), &event);
    }
    EXPECT_EQ(isOn(schedule_keys::kActiveOnDays[1]), 1);
    EXPECT_FALSE(QApplication::activeModalWidget());
}

TEST_F(ListTest, ADropThatChangesNothingIsNobodysBusiness) {
    open();
    select(0);
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(hours(), "7 8 9 ");
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(hours(), "8 7 9 ");
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(hours(), "8 9 7 ");
    press(Qt::Key_Up, Qt::AltModifier);
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(hours(), "7 8 9 ");
    EXPECT_FALSE(window.apply->isEnabled());
}

TEST_F(ListTest, SaysWhenEachComesAndWhyNot) {
    Value preferences = plan({7, 99, 9});
    Array list = preferences[preferences::kScheduleArray].array();
    list[0] = list[0].with(schedule_keys::kIsEnabled, 0);
    for (const auto day : schedule_keys::kActiveOnDays) list[2] = list[2].with(day, 0);
    store(preferences.with(preferences::kScheduleArray, list));
    open();
    const auto said = [&](int row, int role) {
        return window.list->schedules().index(row, qt::kNextColumn).data(role).toString().toStdString();
    };
    EXPECT_EQ(said(0, Qt::DisplayRole), "off");
    EXPECT_EQ(said(1, Qt::DisplayRole), "never");
    EXPECT_EQ(said(1, qt::ScheduleModel::kFaultRole), "its hour is not between 0 and 23");
    EXPECT_EQ(said(2, qt::ScheduleModel::kFaultRole), "no day is chosen");
}

TEST_F(ListTest, PaintsOnlyRowsInSight) {
    Array many;
    for (int i = 0; i < 2'500; ++i) many.push_back(plan({i % 24})[preferences::kScheduleArray].array().front());
    store(Dictionary{{preferences::kScheduleArray, many}});
    open();
    const long before = window.list->drawing().paintedRows;
    QScrollBar& bar = *window.list->verticalScrollBar();
    constexpr int kSteps = 50;
    for (int step = 1; step <= kSteps; ++step) {
        bar.setValue(bar.maximum() * step / kSteps);
        window.list->viewport()->repaint();
    }
    const long inSight = window.list->viewport()->height() / window.list->rowHeight(0) + 2;
    EXPECT_LE(window.list->drawing().paintedRows - before, 2 * kSteps * inSight);
    EXPECT_GE(window.list->drawing().paintedRows - before, kSteps);
}

}  // namespace
}  // namespace quorel::test
