#include "scheduler/Outcome.h"

namespace quorel {

Value Outcome::value() const {
    return Dictionary{{"Code", code}, {"At", at}, {"Due", due}, {"Action", action}, {"Arguments", arguments}};
}

}  // namespace quorel
