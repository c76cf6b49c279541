#pragma once

#import <Foundation/Foundation.h>

#include "model/Value.h"

namespace quorel::appkit {

/// nil for absent. Autoreleased.
id objectFromValue(const Value &value);
/// Absent for nil and for whatever is no property list; such entries of a container are left out. Nesting beyond the
/// depth of any sensible property list is cut off.
Value valueFromObject(id object);

}  // namespace quorel::appkit
