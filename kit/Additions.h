#pragma once

#include <memory>
#include <string_view>

#include "model/CalendarDate.h"
#include "platform/Bundle.h"
#include "platform/View.h"

namespace quorel {

/// Small operations that the product adds to platform classes. Main thread.

/// The image of that name in the bundle of `instance`'s class, or null.
template <class Instance>
std::shared_ptr<Image> imageNamedInBundleOfInstance(std::string_view name, const Instance& instance) {
    return instance.bundle()->imageNamed(name);
}

/// Removes all subviews.
void clear(View& view);

int hour(const CalendarDate& date);
int minute(const CalendarDate& date);

/// The day of `reference` at that hour and minute. Counts beyond a day or an hour carry over, negative ones too.
CalendarDate dateFromHourMinsFromDate(int hour, int minutes, const CalendarDate& reference);

}  // namespace quorel
