#pragma once

#include <cstdint>
#include <span>
#include <string>

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

}  // namespace quorel
