#import "appkit/ActionTarget.h"

#include <utility>

@implementation VXActionTarget

- (id)initWithAction:(std::function<void()>)action {
    if ((self = [super init])) _action = new std::function<void()>(std::move(action));
    return self;
}

- (void)dealloc {
    delete _action;
    [super dealloc];
}

- (void)perform:(id)sender {
    (*_action)();
}

@end
