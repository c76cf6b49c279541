#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "platform/View.h"

namespace quorel::appkit {

/// A class out of a module's bundle as the configurator knows it (`VXPrefPanePlugInClass`), or null when there is no
/// class or it does not conform to the protocol. What a module raises counts as its refusal and is never passed on.
std::shared_ptr<Object> moduleClass(Class aClass, NSBundle *bundle);

}  // namespace quorel::appkit
