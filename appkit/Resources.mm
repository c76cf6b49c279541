#import "appkit/Resources.h"

NSString *VXLocalized(NSString *key, NSBundle *bundle) {
    return [bundle localizedStringForKey:key value:@"" table:nil];
}

NSImage *VXImageNamed(NSString *name, NSBundle *bundle) {
    static NSMutableDictionary *images = [[NSMutableDictionary alloc] init];
    NSString *path = [bundle pathForImageResource:name];
    if (!path) return nil;
    NSImage *image = [images objectForKey:path];
    if (!image) {
        image = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
        if (image) [images setObject:image forKey:path];
    }
    return image;
}
