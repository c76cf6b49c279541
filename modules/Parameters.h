/*
 * What both modules do alike: reading their parameters, which come out of a file, so that anything may stand under a
 * key, and looking up their texts. Functions only: two bundles in one process cannot share a class.
 */
#import <Foundation/Foundation.h>

#include <string_view>

#include "model/ActionParameters.h"

/* A key that the daemon reads too. */
static inline NSString *VXKey(std::string_view key) {
    return [NSString stringWithUTF8String:key.data()];
}

/* The number under the key, a text's leading one included; `otherwise` where there is nothing of the kind. */
static inline int VXIntParameter(NSDictionary *parameters, NSString *key, int otherwise) {
    id value = [parameters objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]] || [value isKindOfClass:[NSString class]]) return [value intValue];
    return otherwise;
}

static inline bool VXFlagParameter(NSDictionary *parameters, NSString *key, bool otherwise) {
    return VXIntParameter(parameters, key, otherwise) != 0;
}

/* A copy to write into; empty where there was no dictionary. Keys that the module does not know are kept. */
static inline NSMutableDictionary *VXMutableParameters(NSDictionary *parameters) {
    if (![parameters isKindOfClass:[NSDictionary class]]) return [[NSMutableDictionary alloc] init];
    return [parameters mutableCopy];
}

/* A text of the module's own bundle, in the user's language. */
static inline NSString *VXLocalized(NSString *key, id module) {
    return [[NSBundle bundleForClass:[module class]] localizedStringForKey:key value:@"" table:nil];
}
