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
    /// One whose files root is yet to copy: owners and modes do not count, links are refused all the same.
    static TrustedFolder beforeItIsCopied(const std::string& path);
    TrustedFolder() : TrustedFolder(FileDescriptor(), Trusts::kRoot) {}

    explicit operator bool() const { return static_cast<bool>(_folder); }
    TrustedFolder folder(const std::string& name) const;
    /// A regular file of the folder, under the same terms.
    FileDescriptor file(const std::string& name) const;
    /// What of a file's bytes there is, when they are no more than `most`.
    std::optional<std::string> contents(const std::string& name, std::size_t most) const;
    /// Of all that is inside, in order; hidden ones left out.
    std::vector<std::string> names() const;

private:
    enum class Trusts { kRoot, kOwnUser, kEverybody };
    TrustedFolder(FileDescriptor folder, Trusts trusts) : _folder(std::move(folder)), _trusts(trusts) {}
    static FileDescriptor ifTrusted(FileDescriptor file, Trusts trusts);
    FileDescriptor openTrusted(const std::string& name, int flags) const;

    FileDescriptor _folder;
    Trusts _trusts;
};

}  // namespace quorel
