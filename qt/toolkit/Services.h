#pragma once

#include <QString>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/System.h"
#include "platform/TableView.h"

namespace quorel::qt {

/// Settings that live as long as the window: it starts locked.
class UserDefaults : public quorel::UserDefaults {
public:
    Value objectForKey(std::string_view key) const override {
        const auto found = _values.find(key);
        return found == _values.end() ? Value() : found->second;
    }
    void setObjectForKey(const Value& value, std::string_view key) override { _values[std::string(key)] = value; }
    void removeObjectForKey(std::string_view key) override { _values.erase(std::string(key)); }
    void synchronize() override {}

private:
    std::map<std::string, Value, std::less<>> _values;
};

class NotificationCenter : public quorel::NotificationCenter {
public:
    void addObserver(std::string_view name, Observer observer) override {
        _observers.emplace_back(name, std::move(observer));
    }
    void postNotification(const Notification& notification) override {
        for (const auto& [name, observer] : std::vector(_observers)) {
            if (name == notification.name) observer(notification);
        }
    }

private:
    std::vector<std::pair<std::string, Observer>> _observers;
};

/// As the user's locale writes times of day: "HH:mm", or with "AP".
QString shortTimeFormat();

/// Texts in that form.
class TimeFormat : public quorel::TimeFormat {
public:
    std::string shortTimeString(const CalendarDate& date) const override;
};

/// The queue of the main thread, served by the toolkit's loop.
class MainQueue : public DispatchQueue {
public:
    void async(Block block) override;
    void sync(const Block& block) override;
    void after(std::chrono::nanoseconds delay, Block block) override;
};

/// Cells that nobody draws: rows are drawn by the list itself, which only asks whether it is enabled.
class Cells : public quorel::Cells {
public:
    std::shared_ptr<ButtonCell> makeButtonCell(std::string_view title) override;
    std::shared_ptr<Cell> makeConfiguratorCell(std::string_view title) override;
};

/// Whether a cell that `Cells` has made may be used.
bool isEnabled(const Cell* cell);

}  // namespace quorel::qt
