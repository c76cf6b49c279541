#pragma once

#import <AppKit/AppKit.h>

/* The text for the key in the user's language, out of the bundle's default table. */
NSString *VXLocalized(NSString *key, NSBundle *bundle);

/* The bundle's image of that name, with or without its extension; nil when there is none. Images are kept for the life
 * of the process: every row of the table shows one of three. */
NSImage *VXImageNamed(NSString *name, NSBundle *bundle);
