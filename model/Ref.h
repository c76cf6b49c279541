#pragma once

#include <atomic>
#include <utility>

namespace quorel {

/// Base of what Ref counts. Objects are immutable once shared, so counting is all that threads contend for.
class RefCounted {
public:
    RefCounted() = default;
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    void retain() const { _count.fetch_add(1, std::memory_order_relaxed); }
    /// True when nobody is left: the caller deletes the object, as what it is.
    bool release() const { return _count.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    bool isUnique() const { return _count.load(std::memory_order_acquire) == 1; }

private:
    mutable std::atomic<unsigned> _count{0};
};

/// Shared ownership in one pointer's width; usable from any thread like std::shared_ptr.
template <class T>
class Ref {
public:
    Ref() = default;
    explicit Ref(T* object) : _object(object) { retain(); }
    Ref(const Ref& other) : _object(other._object) { retain(); }
    Ref(Ref&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(_object, other._object);
        return *this;
    }
    ~Ref() {
        if (_object && _object->release()) delete _object;
    }

    T* get() const { return _object; }
    T& operator*() const { return *_object; }
    T* operator->() const { return _object; }
    explicit operator bool() const { return _object != nullptr; }
    bool unique() const { return _object && _object->isUnique(); }
    friend bool operator==(const Ref& a, const Ref& b) { return a._object == b._object; }

private:
    void retain() const {
        if (_object) _object->retain();
    }
    T* _object = nullptr;
};

}  // namespace quorel
