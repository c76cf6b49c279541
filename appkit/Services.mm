#import "appkit/Services.h"

#import <Foundation/Foundation.h>

#include <utility>

#include "appkit/CalendarDates.h"
#include "appkit/Strings.h"
#include "appkit/Values.h"

/* Hands a notification of the process's center to a C++ function. */
@interface VXNotificationObserver : NSObject {
    quorel::NotificationCenter::Observer *_observer;
}
- (id)initWithObserver:(quorel::NotificationCenter::Observer)observer;
- (void)receive:(NSNotification *)notification;
@end

@implementation VXNotificationObserver

- (id)initWithObserver:(quorel::NotificationCenter::Observer)observer {
    if ((self = [super init])) _observer = new quorel::NotificationCenter::Observer(std::move(observer));
    return self;
}

- (void)dealloc {
    delete _observer;
    [super dealloc];
}

- (void)receive:(NSNotification *)notification {
    quorel::Notification received{quorel::appkit::stdString([notification name]), {}, {}};
    id object = [notification object];
    if ([object isKindOfClass:[NSString class]]) received.object = quorel::appkit::stdString(object);
    received.userInfo = quorel::appkit::valueFromObject([notification userInfo]);
    (*_observer)(received);
}

@end

namespace quorel::appkit {

Value UserDefaults::objectForKey(std::string_view key) const {
    return valueFromObject([[NSUserDefaults standardUserDefaults] objectForKey:nsString(key)]);
}

void UserDefaults::setObjectForKey(const Value &value, std::string_view key) {
    [[NSUserDefaults standardUserDefaults] setObject:objectFromValue(value) forKey:nsString(key)];
}

void UserDefaults::removeObjectForKey(std::string_view key) {
    [[NSUserDefaults standardUserDefaults] removeObjectForKey:nsString(key)];
}

void UserDefaults::synchronize() {
    [[NSUserDefaults standardUserDefaults] synchronize];
}

void NotificationCenter::addObserver(std::string_view name, Observer observer) {
    // Kept for good, as the center promises: it does not keep its observers itself.
    VXNotificationObserver *native = [[VXNotificationObserver alloc] initWithObserver:std::move(observer)];
    [[NSNotificationCenter defaultCenter] addObserver:native
                                             selector:@selector(receive:)
                                                 name:nsString(name)
                                               object:nil];
}

void NotificationCenter::postNotification(const Notification &notification) {
    [[NSNotificationCenter defaultCenter]
        postNotificationName:nsString(notification.name)
                      object:notification.object ? nsString(*notification.object) : nil
                    userInfo:objectFromValue(notification.userInfo)];
}

std::string TimeFormat::shortTimeString(const CalendarDate &date) const {
    return stdString([timeFormatter() stringFromDate:dateFromCalendarDate(date)]);
}

}  // namespace quorel::appkit
