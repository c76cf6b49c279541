#import "appkit/Values.h"

#include <cstring>

#include "appkit/Strings.h"
#include "model/Dictionary.h"

namespace quorel::appkit {

namespace {

constexpr int kMaximumDepth = 64;

bool isBoolean(NSNumber *number) {
    // Both platforms make all booleans of one private class, and no other number of it.
    return [number isKindOfClass:[[NSNumber numberWithBool:YES] class]];
}

Value valueFromNumber(NSNumber *number) {
    if (isBoolean(number)) return Value(static_cast<bool>([number boolValue]));
    const char *type = [number objCType];
    if (std::strcmp(type, @encode(double)) == 0 || std::strcmp(type, @encode(float)) == 0) {
        return Value([number doubleValue]);
    }
    return Value(std::int64_t{[number longLongValue]});
}

Value valueAt(id object, int depth) {
    if ([object isKindOfClass:[NSString class]]) return Value(stdString(object));
    if ([object isKindOfClass:[NSNumber class]]) return valueFromNumber(object);
    if ([object isKindOfClass:[NSDate class]]) return Value(Date{[object timeIntervalSinceReferenceDate]});
    if ([object isKindOfClass:[NSData class]]) {
        const auto *bytes = static_cast<const std::uint8_t *>([object bytes]);
        return Value(Data(bytes, bytes + [object length]));
    }
    if (depth >= kMaximumDepth) return {};
    if ([object isKindOfClass:[NSArray class]]) {
        Array array;
        for (id entry in object) {
            if (Value value = valueAt(entry, depth + 1); value.isPresent()) array.push_back(std::move(value));
        }
        return Value(std::move(array));
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        Dictionary dictionary;
        for (id key in object) {
            if (![key isKindOfClass:[NSString class]]) continue;
            dictionary.set(stdString(key), valueAt([object objectForKey:key], depth + 1));
        }
        return Value(std::move(dictionary));
    }
    return {};
}

}  // namespace

id objectFromValue(const Value &value) {
    if (value.isText()) return nsString(value.text());
    if (value.isBoolean()) return [NSNumber numberWithBool:value.intValue() != 0];
    if (value.isInteger()) return [NSNumber numberWithLongLong:value.integer()];
    if (value.isReal()) return [NSNumber numberWithDouble:value.real()];
    if (value.isDate()) return [NSDate dateWithTimeIntervalSinceReferenceDate:value.date().secondsSinceReference];
    if (value.isData()) return [NSData dataWithBytes:value.data().data() length:value.data().size()];
    if (value.isArray()) {
        NSMutableArray *array = [NSMutableArray arrayWithCapacity:value.array().size()];
        for (const Value &entry : value.array()) {
            if (id object = objectFromValue(entry)) [array addObject:object];
        }
        return array;
    }
    if (value.isDictionary()) {
        const Dictionary &entries = value.dictionary();
        NSMutableDictionary *dictionary = [NSMutableDictionary dictionaryWithCapacity:entries.size()];
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (id object = objectFromValue(entries.valueAt(i))) {
                [dictionary setObject:object forKey:nsString(entries.keyAt(i))];
            }
        }
        return dictionary;
    }
    return nil;
}

Value valueFromObject(id object) {
    return valueAt(object, 0);
}

}  // namespace quorel::appkit
