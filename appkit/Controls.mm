#import "appkit/Controls.h"

#include "appkit/CalendarDates.h"

namespace quorel::appkit {

void PopUpButton::addItemWithTitle(std::string_view title) {
    // The pop-up's own operation of this name would drop an earlier item of the same title.
    const bool first = [native() numberOfItems] == 0;
    [[native() menu] addItemWithTitle:nsString(title) action:NULL keyEquivalent:@""];
    if (first) [native() selectItemAtIndex:0];
}

void PopUpButton::addSeparatorItem() {
    [[native() menu] addItem:[NSMenuItem separatorItem]];
}

void PopUpButton::selectItemAtIndex(int index) {
    if (index >= -1 && index < numberOfItems()) [native() selectItemAtIndex:index];
}

void PopUpButton::selectItemWithTitle(std::string_view title) {
    const NSInteger index = [native() indexOfItemWithTitle:nsString(title)];
    if (index >= 0) [native() selectItemAtIndex:index];
}

std::optional<std::string> PopUpButton::titleOfSelectedItem() const {
    if ([native() indexOfSelectedItem] < 0) return {};
    return stdString([native() titleOfSelectedItem]);
}

DatePicker::DatePicker(NSControl *picker) : BasicControl(static_cast<NSDatePicker *>(picker)) {
    [native() setTimeZone:wallClockZone()];
}

CalendarDate DatePicker::dateValue() const {
    return calendarDateFromDate([native() dateValue]);
}

void DatePicker::setDateValue(const CalendarDate &date) {
    [native() setDateValue:dateFromCalendarDate(date)];
}

}  // namespace quorel::appkit
