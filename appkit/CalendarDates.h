#pragma once

#import <Foundation/Foundation.h>

#include "model/CalendarDate.h"

namespace quorel::appkit {

/// A wall-clock date as an NSDate of a zone that skips and repeats no hour: there every hour and minute exists on every
/// day. Whoever shows or reads the NSDate must be set to this zone.
NSTimeZone *wallClockZone();
NSDate *dateFromCalendarDate(const CalendarDate &date);
CalendarDate calendarDateFromDate(NSDate *date);
/// Writes the time of such an NSDate in the user's short style. Main thread.
NSDateFormatter *timeFormatter();

}  // namespace quorel::appkit
