#include "bench/FoundationSchedules.h"

#import <Foundation/Foundation.h>
#include <malloc.h>

#include <algorithm>

#include "bench/Content.h"

@interface PeerModule : NSObject {
    NSDictionary *_parameters;
}
- (void)setParameters:(NSDictionary *)parameters;
- (NSString *)pluginName;
- (NSString *)actionString;
- (BOOL)needsStartup;
- (BOOL)needsWakeUp;
@end

@implementation PeerModule
- (void)setParameters:(NSDictionary *)parameters {
    [parameters retain];
    [_parameters release];
    _parameters = parameters;
}
- (NSString *)pluginName {
    return @"Sleep";
}
- (NSString *)actionString {
    return @"Puts the computer to sleep";
}
- (BOOL)needsStartup {
    return [[_parameters objectForKey:@"startup"] intValue] != 0;
}
- (BOOL)needsWakeUp {
    return [[_parameters objectForKey:@"wake"] intValue] != 0;
}
- (void)dealloc {
    [_parameters release];
    [super dealloc];
}
@end

namespace quorel::bench {

namespace {

NSString *text(std::string_view content) {
    return [[[NSString alloc] initWithBytes:content.data() length:content.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

/// A property list in the binary form, of the Schedules with these numbers.
NSData *makeFile(int first, int end) {
    NSMutableArray *list = [NSMutableArray array];
    for (int i = first; i < end; ++i) {
        const Content content = Content::ofNumber(i);
        NSMutableDictionary *record = [NSMutableDictionary dictionary];
        [record setObject:text(content.type) forKey:@"Action Type"];
        [record setObject:[NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:content.parameter], @"n",
                                                                     [NSNumber numberWithBool:NO], @"startup",
                                                                     [NSNumber numberWithBool:NO], @"wake", nil]
                   forKey:@"Action Parameters"];
        [record setObject:[NSNumber numberWithInt:content.hour] forKey:@"Action Hour"];
        [record setObject:text(std::to_string(content.minute)) forKey:@"Action Minute"];
        [record setObject:[NSNumber numberWithInt:content.enabled ? 1 : 0] forKey:@"Is Enabled"];
        for (unsigned day = 0; day < 7; ++day) {
            [record setObject:[NSNumber numberWithBool:(content.days >> day & 1) != 0]
                       forKey:text(schedule_keys::kActiveOnDays[day])];
        }
        [list addObject:record];
    }
    return [NSPropertyListSerialization dataFromPropertyList:list
                                                      format:NSPropertyListBinaryFormat_v1_0
                                            errorDescription:nullptr];
}

struct SortContext {
    NSString *column;
    bool reversed;
};

NSComparisonResult ordered(bool aFirst, const SortContext *context) {
    return aFirst != context->reversed ? NSOrderedAscending : NSOrderedDescending;
}

// Equal times compare as the same here: with the ruled answer not every sort would come to an end.
NSComparisonResult compareTimes(id a, id b, void *context) {
    const int hourOfA = [[a objectForKey:@"Action Hour"] intValue];
    const int hourOfB = [[b objectForKey:@"Action Hour"] intValue];
    if (hourOfA != hourOfB) return ordered(hourOfA < hourOfB, static_cast<SortContext *>(context));
    const int minuteOfA = [[a objectForKey:@"Action Minute"] intValue];
    const int minuteOfB = [[b objectForKey:@"Action Minute"] intValue];
    if (minuteOfA == minuteOfB) return NSOrderedSame;
    return ordered(minuteOfA < minuteOfB, static_cast<SortContext *>(context));
}

NSComparisonResult compareFlags(id a, id b, void *context) {
    const auto *sortContext = static_cast<SortContext *>(context);
    const bool flagOfA = ([[a objectForKey:sortContext->column] intValue] & 0xff) != 0;
    const bool flagOfB = ([[b objectForKey:sortContext->column] intValue] & 0xff) != 0;
    if (flagOfA == flagOfB) return NSOrderedSame;
    return ordered(flagOfA, sortContext);
}

NSDateFormatter *newShortTimeFormatter() {
    NSDateFormatter *formatter = [[NSDateFormatter alloc] init];
    [formatter setFormatterBehavior:NSDateFormatterBehavior10_4];
    [formatter setDateStyle:NSDateFormatterNoStyle];
    [formatter setTimeStyle:NSDateFormatterShortStyle];
    return formatter;
}

NSString *shortTime(int hour, int minute) {
    NSCalendarDate *now = [NSCalendarDate calendarDate];
    NSCalendarDate *date = [NSCalendarDate dateWithYear:[now yearOfCommonEra]
                                                  month:static_cast<NSUInteger>([now monthOfYear])
                                                    day:static_cast<NSUInteger>([now dayOfMonth])
                                                   hour:static_cast<NSUInteger>(hour)
                                                 minute:static_cast<NSUInteger>(minute)
                                                 second:0
                                               timeZone:[now timeZone]];
    return [[newShortTimeFormatter() autorelease] stringFromDate:date];
}

}  // namespace

std::string shortTimeByKeptFormatter(int hour, int minute) {
    @autoreleasepool {
        static NSDateFormatter *const formatter = [] {
            NSDateFormatter *made = newShortTimeFormatter();
            [made setTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
            return made;
        }();
        return [[formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:hour * 3600.0 + minute * 60.0]]
            UTF8String];
    }
}

struct FoundationSchedules::Parts {
    NSArray *list = nil;
    NSMutableArray *scheduleArray = nil;
    NSMutableDictionary *plugins = nil;
    bool reversed = false;
    double bytesPerSchedule = 0;
};

FoundationSchedules::FoundationSchedules(int count) : _parts(std::make_unique<Parts>()) {
    _parts->plugins = [NSMutableDictionary new];
    NSMutableArray *list = [[NSMutableArray alloc] initWithCapacity:static_cast<NSUInteger>(count)];
    for (int first = 0; first < count; first += kSchedulesPerFile) {
        NSData *file = nil;
        @autoreleasepool {
            file = [makeFile(first, std::min(first + kSchedulesPerFile, count)) retain];
        }
        const auto before = mallinfo2();
        @autoreleasepool {
            [list addObjectsFromArray:[NSPropertyListSerialization propertyListFromData:file
                                                                       mutabilityOption:NSPropertyListImmutable
                                                                                 format:nullptr
                                                                       errorDescription:nullptr]];
        }
        const auto after = mallinfo2();
        _parts->bytesPerSchedule +=
            static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) / count;
        [file release];
    }
    _parts->list = list;
    @autoreleasepool {
        for (const auto type : {schedule_keys::kSleepType, schedule_keys::kWakeUpType}) {
            [_parts->plugins setObject:[[PeerModule new] autorelease] forKey:text(type)];
        }
    }
    handOver();
}

FoundationSchedules::~FoundationSchedules() {
    [_parts->list release];
    [_parts->scheduleArray release];
    [_parts->plugins release];
}

double FoundationSchedules::bytesPerSchedule() const {
    return _parts->bytesPerSchedule;
}

// Kept linear: taking entries out of the middle one by one would make this quadratic.
std::size_t FoundationSchedules::handOver() {
    @autoreleasepool {
        NSMutableArray *kept = [[NSMutableArray alloc] initWithCapacity:[_parts->list count]];
        for (NSDictionary *schedule in _parts->list) {
            if ([_parts->plugins objectForKey:[schedule objectForKey:@"Action Type"]]) [kept addObject:schedule];
        }
        [_parts->scheduleArray release];
        _parts->scheduleArray = kept;
        return [kept count];
    }
}

void FoundationSchedules::sort(const char *column) {
    @autoreleasepool {
        SortContext context{text(column), _parts->reversed};
        _parts->reversed = !_parts->reversed;
        const bool byTime = std::string_view(column) == kInfosColumn;
        [_parts->scheduleArray sortUsingFunction:byTime ? compareTimes : compareFlags context:&context];
    }
}

void FoundationSchedules::toggle(std::size_t first, std::size_t rows, const char *column) {
    @autoreleasepool {
        NSString *key = text(column);
        const std::size_t all = [_parts->scheduleArray count];
        for (std::size_t i = 0; i < rows; ++i) {
            const std::size_t row = (first + i) % all;
            NSMutableDictionary *copy = [[_parts->scheduleArray objectAtIndex:row] mutableCopy];
            const int flag = [[copy objectForKey:key] intValue];
            if (flag == 0 || flag == 1) [copy setObject:[NSNumber numberWithInt:1 - flag] forKey:key];
            [_parts->scheduleArray replaceObjectAtIndex:row withObject:copy];
            [copy release];
            [[NSNotificationCenter defaultCenter] postNotificationName:@"kMOLConfiguratorHasBeenEditedNotification"
                                                                object:nil];
        }
    }
}

int FoundationSchedules::count(const char *type) {
    @autoreleasepool {
        NSString *wanted = text(type);
        int found = 0;
        for (NSDictionary *schedule in _parts->scheduleArray) {
            if ([[schedule objectForKey:@"Action Type"] isEqualToString:wanted]) ++found;
        }
        return found;
    }
}

std::string FoundationSchedules::summaries(std::size_t first, std::size_t rows) {
    @autoreleasepool {
        const std::size_t all = [_parts->scheduleArray count];
        std::string times;
        for (std::size_t i = 0; i < rows; ++i) {
            NSDictionary *schedule = [_parts->scheduleArray objectAtIndex:(first + i) % all];
            PeerModule *module = [_parts->plugins objectForKey:[schedule objectForKey:@"Action Type"]];
            [module setParameters:[schedule objectForKey:@"Action Parameters"]];
            NSMutableDictionary *summary = [NSMutableDictionary dictionary];
            [summary setObject:[module pluginName] forKey:@"Name"];
            [summary setObject:[module actionString] forKey:@"Action"];
            [summary setObject:shortTime([[schedule objectForKey:@"Action Hour"] intValue],
                                         [[schedule objectForKey:@"Action Minute"] intValue])
                        forKey:@"Time"];
            [summary setObject:[NSNumber numberWithBool:[module needsStartup]] forKey:@"Startup"];
            [summary setObject:[NSNumber numberWithBool:[module needsWakeUp]] forKey:@"Wake Up"];
            times += [[summary objectForKey:@"Time"] UTF8String];
        }
        return times;
    }
}

}  // namespace quorel::bench
