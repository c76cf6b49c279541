#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/* The target of a control's action that is a C++ function; runs it on perform:. */
@interface VXActionTarget : NSObject {
    std::function<void()> *_action;
}
- (id)initWithAction:(std::function<void()>)action;
- (void)perform:(id)sender;
@end
