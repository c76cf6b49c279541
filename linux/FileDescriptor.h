#pragma once

#include <unistd.h>

#include <utility>

namespace quorel {

/// Owns an open file; below 0 is none.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : _descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    ~FileDescriptor() { close(); }

    int get() const { return _descriptor; }
    /// Leaves it to the caller, open.
    int release() { return std::exchange(_descriptor, -1); }
    explicit operator bool() const { return _descriptor >= 0; }
    /// False when what was written did not all arrive.
    bool close() { return _descriptor < 0 || ::close(std::exchange(_descriptor, -1)) == 0; }

private:
    int _descriptor;
};

}  // namespace quorel
