#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "model/Schedule.h"
#include "qt/host/BusLoop.h"
#include "qt/host/Host.h"
#include "qt/toolkit/Services.h"
#include "tests/support/FakeKit.h"
#include "tests/support/FakeModule.h"

namespace quorel::test {

/// The window with a host in memory behind it; programs and authority do as told.
class WindowTest : public testing::Test {
protected:
    /// Before the host is made.
    bool prepare() {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
        bundle->info = Value(Dictionary{{"CFBundleIdentifier", "com.quorel.settings"}});
        for (const auto type : {schedule_keys::kSleepType, schedule_keys::kWakeUpType}) {
            installModule(memory.bundles, makeModule(type, type), bundle->builtInPlugInsPath(), std::string(type));
        }
        center.daemonAlive = true;
        center.handles = true;
        center.onDaemon = [this](const Notification& notification) {
            if (center.handles) store(notification.userInfo);
        };
        memory.authorization.granted = true;
        store(plan({7, 8, 9}));
        return true;
    }

    /// Shown, and told that it is.
    void open() {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window, 20'000));
        ASSERT_TRUE(QTest::qWaitFor([this] { return center.daemonPings > 0; }, 20'000));
        settle();
    }
    void settle() {
        memory.dispatch.run();
        QApplication::processEvents();
    }
    /// That which the window watches.
    void changeFile() {
        QFile file(folder.filePath(QStringLiteral("com.quorel.plist")));
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write("x");
    }
    void store(const Value& given) { memory.files.files[std::string(preferences::kFile)] = given; }
    /// A sleep at each of these hours, every day.
    static Value plan(std::initializer_list<int> hours) {
        Array schedules;
        for (const int hour : hours) {
            Dictionary schedule{{schedule_keys::kIsEnabled, 1},
                                {schedule_keys::kActionType, schedule_keys::kSleepType},
                                {schedule_keys::kActionHour, hour},
                                {schedule_keys::kActionMinute, 0}};
            for (const auto day : schedule_keys::kActiveOnDays) schedule.set(day, 1);
            schedules.push_back(Value(std::move(schedule)));
        }
        return Dictionary{{preferences::kShowInMenuBar, 1}, {preferences::kScheduleArray, std::move(schedules)}};
    }
    /// Those of the list, or of the last save.
    static std::string hoursOf(const Array& schedules) {
        std::string hours;
        for (const Value& one : schedules) hours += std::to_string(one[schedule_keys::kActionHour].intValue()) + " ";
        return hours;
    }
    std::string hours() { return hoursOf(host.controller().configurator()->scheduleArray()); }
    std::string saved() {
        if (center.toDaemon.empty()) return "nothing";
        return hoursOf(center.toDaemon.back().userInfo[preferences::kScheduleArray].array());
    }
    void select(int row) { window.list->setCurrentIndex(window.list->schedules().index(row, qt::kActionColumn)); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.list, static_cast<Qt::Key>(key), modifiers);
    }
    /// Clicks the button of the question that is asked next, by its place.
    static void answer(const char* text) {
        QTimer::singleShot(0, qApp, [text] {
            auto* const question = QApplication::activeModalWidget();
            for (auto* const button : question ? question->findChildren<QAbstractButton*>() : QList<QAbstractButton*>())
                if (button->text() == QLatin1String(text)) return button->click();
            ADD_FAILURE() << "nobody asks " << text;
            if (question) question->close();
        });
    }

    /// Paints the list and saves, in the sheet that is opened next.
    void saveSheet() {
        QTimer::singleShot(0, &window, [this] {
            window.list->viewport()->repaint();
            for (auto* const button : window.sheet->findChildren<QAbstractButton*>())
                if (button->text() == QLatin1String("&Save")) button->click();
        });
    }

    headless::HeadlessPlatform memory;
    FakeCommunicationCenter center;
    FakeUpdateChecker checker;
    std::shared_ptr<headless::Bundle> bundle = std::make_shared<headless::Bundle>("/settings");
    QTemporaryDir folder;
    qt::BusLoop bus;
    DaemonView daemonsPlan{bus.loop(), {.outcomes = 500, .status = true, .asksPeople = true}, {[] {}}};
    qt::Application application;
    qt::Cells cells;
    qt::Patience patience;
    qt::PatientCenter patientCenter{center, patience};
    Platform platform{
        {application, memory.bundles, cells, memory.defaultCenter, memory.standardUserDefaults, memory.timeFormat},
        {memory.authorization, memory.clock, memory.dispatch, memory.files, memory.sharedWorkspace, 501}};
    struct Installed {
        explicit Installed(VXCommunicationCenter& center) { VXCommunicationCenter::setSharedInstance(&center); }
    } installed{patientCenter};
    qt::SettingsWindow window{daemonsPlan, {}, {}};
    const bool isPrepared = prepare();
    qt::Host host{{window, daemonsPlan, application, platform, patience, bundle, patientCenter,
                   folder.filePath(QStringLiteral("com.quorel.plist")).toStdString()}};
};

}  // namespace quorel::test
