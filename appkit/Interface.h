#pragma once

#import <AppKit/AppKit.h>

/* What an interface file cannot say on both platforms. */

/* Puts the texts of the user's language in the place of the keys that the interface file holds as titles, labels and
 * tool tips. A tool tip is also what assistive programs call a control without a title. */
void VXLocalizeView(NSView *view, NSBundle *bundle);
void VXLocalizeWindow(NSWindow *window, NSBundle *bundle);

/* Shows an image of the bundle on a button in place of a title. */
void VXSetButtonImages(NSButton *button, NSString *name, NSString *alternateName, NSBundle *bundle);

/* Lets a button up before its action opens a sheet: it would look pressed for as long as the sheet is open. */
void VXLetGoOfButton(id sender);

/* What is in the view and takes the keyboard, in the order of the subviews. */
NSArray *VXKeyViewsIn(NSView *view);
/* Makes Tab go through the views in this order, and round. */
void VXLinkKeyViews(NSArray *views);
