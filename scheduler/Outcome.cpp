#include "scheduler/Outcome.h"
#include "model/Wire.h"

namespace quorel {

namespace keys = wire::keys;

Value Outcome::value() const {
    return Dictionary{{keys::kCode, code},
                      {keys::kAt, at},
                      {keys::kDue, due},
                      {keys::kAction, action},
                      {keys::kArguments, arguments}};
}

}  // namespace quorel
