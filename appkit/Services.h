#pragma once

#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/System.h"

namespace quorel::appkit {

/// Small services of the frameworks; they live as long as the process. Main thread.

class UserDefaults : public quorel::UserDefaults {
public:
    Value objectForKey(std::string_view key) const override;
    void setObjectForKey(const Value &value, std::string_view key) override;
    void removeObjectForKey(std::string_view key) override;
    void synchronize() override;
};

class NotificationCenter : public quorel::NotificationCenter {
public:
    void addObserver(std::string_view name, Observer observer) override;
    void postNotification(const Notification &notification) override;
};

class TimeFormat : public quorel::TimeFormat {
public:
    std::string shortTimeString(const CalendarDate &date) const override;
};

}  // namespace quorel::appkit
