#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "model/CalendarDate.h"
#include "platform/View.h"

namespace quorel {

/// The controls that outlets point at. Setting a value from code sends no action.

class Control : public View {
public:
    virtual void setEnabled(bool enabled) = 0;
};

inline constexpr int kStateOff = 0;
inline constexpr int kStateOn = 1;
inline constexpr int stateOf(bool on) {
    return on ? kStateOn : kStateOff;
}

/// Push button or check box.
class Button : public Control {
public:
    virtual int state() const = 0;
    virtual void setState(int state) = 0;  ///< any non-zero value shows as on
};

class PopUpButton : public Control {
public:
    virtual void removeAllItems() = 0;
    /// Appends; earlier items of the same title stay.
    virtual void addItemWithTitle(std::string_view title) = 0;
    virtual void addSeparatorItem() = 0;
    virtual int numberOfItems() const = 0;        ///< separators included
    virtual int indexOfSelectedItem() const = 0;  ///< -1 when none is selected
    /// -1 selects nothing; an index that no item has changes nothing.
    virtual void selectItemAtIndex(int index) = 0;
    /// Selects the first item of that title; an unknown title changes nothing.
    virtual void selectItemWithTitle(std::string_view title) = 0;
    virtual std::optional<std::string> titleOfSelectedItem() const = 0;
};

class TextField : public Control {
public:
    virtual void setStringValue(std::string_view text) = 0;
};

class ImageView : public Control {
public:
    virtual void setImage(std::shared_ptr<Image> image) = 0;  ///< null shows nothing
};

/// Shows and edits a time of day; the date is carried along.
class DatePicker : public Control {
public:
    virtual CalendarDate dateValue() const = 0;
    virtual void setDateValue(const CalendarDate& date) = 0;
    virtual void setDelegate(Object* delegate) = 0;  ///< not owned
};

class ProgressIndicator : public View {
public:
    virtual void startAnimation() = 0;
    virtual void stopAnimation() = 0;
};

}  // namespace quorel
