#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "linux/FileDescriptor.h"

namespace quorel {

/// A folder that nobody but root can have changed: it and all that lead to it are root's, are no links, and others may
/// not write to them. Below a root of its own a program trusts its own user too.
///
/// Opening one answers with an invalid one, with errno set: ENOENT where there is none, EPERM where others could write.
class TrustedFolder {
public:
    /// `root` stands before `path`, and is taken as it is; an empty one is the computer's.
    static TrustedFolder open(const std::string& root, const std::string& path);
    TrustedFolder() : TrustedFolder(FileDescriptor(), false) {}

    explicit operator bool() const { return static_cast<bool>(_folder); }
    TrustedFolder folder(const std::string& name) const;
    /// A regular file of the folder, under the same terms.
    FileDescriptor file(const std::string& name) const;
    /// What of a file's bytes there is, when they are no more than `most`.
    std::optional<std::string> contents(const std::string& name, std::size_t most) const;
    /// Of all that is inside, in order; hidden ones left out.
    std::vector<std::string> names() const;

private:
    TrustedFolder(FileDescriptor folder, bool trustsOwnUser)
        : _folder(std::move(folder)), _trustsOwnUser(trustsOwnUser) {}
    FileDescriptor openTrusted(const std::string& name, int flags) const;

    FileDescriptor _folder;
    bool _trustsOwnUser;
};

}  // namespace quorel
