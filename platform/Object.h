#pragma once

namespace quorel {

/// Root of whatever can be a sender, a target, a view or a loaded class.
/// A null pointer stands for "nobody": an action sent by code rather than by a control.
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;
};

}  // namespace quorel
