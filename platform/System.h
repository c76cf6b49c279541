#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "model/CalendarDate.h"
#include "model/Value.h"

namespace quorel {

using AuthorizationStatus = std::int32_t;
using AuthorizationFlags = std::uint32_t;

inline constexpr AuthorizationStatus kAuthorizationSuccess = 0;
inline constexpr AuthorizationFlags kAuthorizationFlagDefaults = 0;
inline constexpr AuthorizationFlags kAuthorizationFlagInteractionAllowed = 1;
inline constexpr AuthorizationFlags kAuthorizationFlagExtendRights = 2;
inline constexpr AuthorizationFlags kAuthorizationFlagDestroyRights = 8;

struct AuthorizationItem {
    std::string name;
    std::string value;  ///< opaque bytes, mostly none
    AuthorizationFlags flags = 0;
};

/// A session with the authority; made by AuthorizationCreate, ended by AuthorizationFree.
struct OpaqueAuthorization;
using AuthorizationRef = OpaqueAuthorization*;

/// Asks the system whether this user may act with a right. Main thread; any status but success is a refusal.
class Authorization {
public:
    virtual ~Authorization() = default;
    /// Fails when the authority cannot be reached; `authorization` is then left alone.
    virtual AuthorizationStatus AuthorizationCreate(AuthorizationFlags flags, AuthorizationRef& authorization) = 0;
    /// Refuses a null reference. With interaction allowed it may put up a dialog and blocks until that is answered.
    virtual AuthorizationStatus AuthorizationCopyRights(AuthorizationRef authorization,
                                                        std::span<const AuthorizationItem> rights,
                                                        AuthorizationFlags flags) = 0;
    virtual AuthorizationStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags) = 0;
};

/// Any thread.
class Clock {
public:
    virtual ~Clock() = default;
    virtual CalendarDate currentDate() const = 0;
};

/// Runs its blocks one at a time, in order. Usable from any thread. Blocks must not throw.
class DispatchQueue {
public:
    using Block = std::function<void()>;
    virtual ~DispatchQueue() = default;
    virtual void async(Block block) = 0;
    /// Returns when the block has returned. Not from a block of the same queue.
    virtual void sync(const Block& block) = 0;
    /// Pending blocks keep the queue alive, whoever else let go of it.
    virtual void after(std::chrono::nanoseconds delay, Block block) = 0;
};

/// A repeating timer of the main thread.
class Timer {
public:
    virtual ~Timer() = default;
    virtual void invalidate() = 0;
};

class Dispatch {
public:
    virtual ~Dispatch() = default;
    virtual std::shared_ptr<DispatchQueue> createQueue(std::string_view label) = 0;
    /// The queue of the main thread, served by the application's event loop, modal loops included.
    virtual DispatchQueue& mainQueue() = 0;
};

/// Reads property-list files whole, in whichever encoding the platform knows. Main thread.
class PropertyListFiles {
public:
    virtual ~PropertyListFiles() = default;
    /// Absent when there is no file, it cannot be read, or its root is no dictionary. Never throws.
    virtual Value dictionaryWithContentsOfFile(std::string_view path) const = 0;
};

/// The user's desktop. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// Shows the page in the user's browser; false when it could not be handed over.
    virtual bool openURL(std::string_view url) = 0;
};

/// What the pane asks of the operating system. The services outlive every object that was given them.
struct System {
    Authorization& authorization;
    Clock& clock;
    Dispatch& dispatch;
    PropertyListFiles& files;
    Workspace& sharedWorkspace;
    unsigned effectiveUserId;  ///< of this process, as geteuid answers it
};

}  // namespace quorel
