#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/System.h"

namespace quorel::headless {

class UserDefaults : public quorel::UserDefaults {
public:
    Value objectForKey(std::string_view key) const override {
        const auto found = values.find(std::string(key));
        return found == values.end() ? Value() : found->second;
    }
    void setObjectForKey(const Value& value, std::string_view key) override {
        values[std::string(key)] = value;
        ++writes;
    }
    void removeObjectForKey(std::string_view key) override { values.erase(std::string(key)); }
    void synchronize() override { onDisk = values; }

    std::map<std::string, Value> values;
    std::map<std::string, Value> onDisk;  ///< what a later launch would find
    int writes = 0;
};

class NotificationCenter : public quorel::NotificationCenter {
public:
    void addObserver(std::string_view name, Observer observer) override {
        _observers.emplace_back(name, std::move(observer));
    }
    void postNotification(const Notification& notification) override {
        posted.push_back(notification);
        const auto observers = _observers;
        for (const auto& [name, observer] : observers) {
            if (name == notification.name) observer(notification);
        }
    }

    std::vector<Notification> posted;

private:
    std::vector<std::pair<std::string, Observer>> _observers;
};

/// A clock that stands where it is put.
class Clock : public quorel::Clock {
public:
    CalendarDate currentDate() const override { return now; }

    CalendarDate now{2024, 3, 15, 10, 20, 30};
};

/// Writes times as "23:00", or with another separator.
class TimeFormat : public quorel::TimeFormat {
public:
    std::string shortTimeString(const CalendarDate& date) const override {
        const auto twoDigits = [](int number) { return std::string(number < 10 ? "0" : "") + std::to_string(number); };
        return twoDigits(date.hour) + separator + twoDigits(date.minute);
    }

    char separator = ':';
};

class PropertyListFiles : public quorel::PropertyListFiles {
public:
    Value dictionaryWithContentsOfFile(std::string_view path) const override {
        ++reads;
        const auto found = files.find(std::string(path));
        return found != files.end() && found->second.isDictionary() ? found->second : Value();
    }

    std::map<std::string, Value> files;
    mutable int reads = 0;
};

/// An authority that answers as told.
class Authorization : public quorel::Authorization {
public:
    struct Asked {
        std::vector<AuthorizationItem> rights;
        AuthorizationFlags flags;
    };

    AuthorizationStatus AuthorizationCreate(AuthorizationFlags flags, AuthorizationRef& authorization) override {
        ++created;
        createFlags = flags;
        if (!reachable) return kRefused;
        authorization = reinterpret_cast<AuthorizationRef>(&_session);
        return kAuthorizationSuccess;
    }
    AuthorizationStatus AuthorizationCopyRights(AuthorizationRef authorization,
                                                std::span<const AuthorizationItem> rights,
                                                AuthorizationFlags flags) override {
        asked.push_back({{rights.begin(), rights.end()}, flags});
        if (!authorization) return kRefused;
        if (granted) return kAuthorizationSuccess;
        if (!(flags & kAuthorizationFlagInteractionAllowed)) return kRefused;
        if (duringDialog) duringDialog();
        granted = grantedWhenAsked;
        return granted ? kAuthorizationSuccess : kRefused;
    }
    AuthorizationStatus AuthorizationFree(AuthorizationRef, AuthorizationFlags flags) override {
        ++freed;
        freeFlags = flags;
        return kAuthorizationSuccess;
    }

    static constexpr AuthorizationStatus kRefused = -60005;
    bool reachable = true;
    bool granted = false;           ///< without a dialog
    bool grantedWhenAsked = false;  ///< the person's answer, which then counts without a dialog
    std::function<void()> duringDialog;
    std::vector<Asked> asked;
    int created = 0;
    int freed = 0;
    AuthorizationFlags createFlags = 0;
    AuthorizationFlags freeFlags = 0;

private:
    char _session = 0;
};

}  // namespace quorel::headless
