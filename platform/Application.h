#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "model/CalendarDate.h"
#include "model/Value.h"
#include "platform/View.h"

namespace quorel {

inline constexpr int kAlertDefaultReturn = 1;
inline constexpr int kAlertAlternateReturn = 0;

/// The running application: windows, modal loops, alerts. Main thread.
class Application {
public:
    virtual ~Application() = default;

    virtual std::shared_ptr<Window> mainWindow() const = 0;   ///< null when there is none
    virtual std::shared_ptr<Window> modalWindow() const = 0;  ///< of the innermost modal loop, or null

    /// Attaches the sheet to `window`; with a null window the sheet stands on its own.
    virtual void beginSheetModalForWindow(Window& sheet, Window* window) = 0;
    /// Blocks, handling the sheet's events, until stopModal ends this loop.
    virtual void runModalForWindow(Window& window) = 0;
    /// Ends the innermost modal loop; without one nothing happens.
    virtual void stopModal() = 0;
    virtual void endSheet(Window& sheet) = 0;

    /// Blocks until answered. Texts are shown as they are; nothing in them is interpreted.
    virtual int runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                              std::optional<std::string_view> alternateButton) = 0;
    virtual void beep() = 0;
};

/// The user's persistent settings in the domain of the host application. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;
    virtual Value objectForKey(std::string_view key) const = 0;  ///< absent when not set
    virtual void setObjectForKey(const Value& value, std::string_view key) = 0;
    virtual void removeObjectForKey(std::string_view key) = 0;
    virtual void synchronize() = 0;  ///< writes to disk before returning
};

/// The user's way of writing times. Main thread.
class TimeFormat {
public:
    virtual ~TimeFormat() = default;
    /// Time of day in the short style: "23:00" or "11:00 PM".
    virtual std::string shortTimeString(const CalendarDate& date) const = 0;
};

}  // namespace quorel
