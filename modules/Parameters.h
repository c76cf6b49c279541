/*
 * Reading parameters, which come out of a file, so that anything may stand under a key, and looking up texts.
 */
#import <Foundation/Foundation.h>

#include <string_view>

#include "model/ActionParameters.h"

/* A key that a program reads too. */
static inline NSString *VXKey(std::string_view key) {
    return [NSString stringWithUTF8String:key.data()];
}

/* The number under the key, a text's leading one included; `otherwise` where there is nothing of the kind. */
static inline int VXIntParameter(NSDictionary *parameters, NSString *key, int otherwise) {
    id value = [parameters objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]] || [value isKindOfClass:[NSString class]]) return [value intValue];
    return otherwise;
}

static inline bool VXFlagParameter(NSDictionary *parameters, NSString *key) {
    return VXIntParameter(parameters, key, 0) != 0;
}

/* The text under the key, an empty one where there is none. */
static inline NSString *VXTextParameter(NSDictionary *parameters, NSString *key) {
    id value = [parameters objectForKey:key];
    return [value isKindOfClass:[NSString class]] ? value : @"";
}

/* For what is one line: the table's description of an action. */
static inline NSString *VXOneLine(NSString *text) {
    NSCharacterSet *breaks = [NSCharacterSet newlineCharacterSet];
    return [[text componentsSeparatedByCharactersInSet:breaks] componentsJoinedByString:@" "];
}

/* A text of the module's own bundle, in the user's language; out of the table of that name where one is given. */
static inline NSString *VXLocalized(NSString *key, id module, NSString *table = nil) {
    return [[NSBundle bundleForClass:[module class]] localizedStringForKey:key value:@"" table:table];
}
