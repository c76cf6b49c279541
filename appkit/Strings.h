#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace quorel::appkit {

/// Never nil: bytes that are no UTF-8 are taken one by one. Autoreleased.
inline NSString *nsString(std::string_view text) {
    NSString *string = [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
    if (!string) {
        string = [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSISOLatin1StringEncoding];
    }
    return [string autorelease];
}

/// Empty for nil.
inline std::string stdString(NSString *string) {
    const char *bytes = [string UTF8String];
    return bytes ? std::string(bytes, [string lengthOfBytesUsingEncoding:NSUTF8StringEncoding]) : std::string();
}

}  // namespace quorel::appkit
