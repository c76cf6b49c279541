#pragma once

#include "model/Wire.h"
#include "platform/System.h"

namespace quorel {

/// Asks polkit, over the system bus, about this very process: it is named by its own unique bus name, which no other
/// process can take over as it could a process number. Polkit's answer decides for every user, root too.
/// Knows the one right "system.privilege.admin", which kModifyPreferencesAction stands for. Any thread; references are
/// not to be shared between threads.
class PolkitAuthorization : public Authorization {
public:
    /// Reaches polkit, which the bus may have to start: a hung bus fails after a second, a silent polkit after five.
    AuthorizationStatus AuthorizationCreate(AuthorizationFlags flags, AuthorizationRef& authorization) override;
    /// Likewise. With interaction, refuses after five minutes without an answer, once polkit was reached.
    AuthorizationStatus AuthorizationCopyRights(AuthorizationRef authorization,
                                                std::span<const AuthorizationItem> rights,
                                                AuthorizationFlags flags) override;
    /// With kAuthorizationFlagDestroyRights, polkit forgets what it granted for a while through this reference; it
    /// refuses to outside a login session, and the status says so. The reference is gone in any case.
    AuthorizationStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags) override;
};

}  // namespace quorel
