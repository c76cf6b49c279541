#pragma once

#include "platform/Object.h"

namespace quorel {

/// A picture, opaque to the logic; it comes from a Bundle and goes into an ImageView.
class Image : public Object {};

}  // namespace quorel
