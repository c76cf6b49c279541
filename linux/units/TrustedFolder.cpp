#include "linux/units/TrustedFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <sstream>
#include <utility>

namespace quorel {

namespace {

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

}  // namespace

/// Empty where others could have changed the file.
FileDescriptor TrustedFolder::ifTrusted(FileDescriptor file, Trusts trusts) {
    struct stat status {};
    if (!file || trusts == Trusts::kEverybody) return file;
    if (fstat(file.get(), &status) != 0) return FileDescriptor();
    const bool isOurs = status.st_uid == 0 || (trusts == Trusts::kOwnUser && status.st_uid == geteuid());
    if (isOurs && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0) return file;
    errno = EPERM;
    return FileDescriptor();
}

TrustedFolder TrustedFolder::open(const std::string& root, const std::string& path) {
    FileDescriptor top(::open(root.empty() ? "/" : root.c_str(), kFolder));
    TrustedFolder folder(root.empty() ? ifTrusted(std::move(top), Trusts::kRoot) : std::move(top),
                         root.empty() ? Trusts::kRoot : Trusts::kOwnUser);
    std::istringstream components(path);
    for (std::string name; folder && std::getline(components, name, '/');)
        if (!name.empty()) folder = folder.folder(name);
    return folder;
}

TrustedFolder TrustedFolder::beforeItIsCopied(const std::string& path) {
    return {FileDescriptor(::open(path.c_str(), kFolder)), Trusts::kEverybody};
}

FileDescriptor TrustedFolder::openTrusted(const std::string& name, int flags) const {
    return ifTrusted(FileDescriptor(openat(_folder.get(), name.c_str(), flags | O_NOFOLLOW)), _trusts);
}

TrustedFolder TrustedFolder::folder(const std::string& name) const {
    return {openTrusted(name, kFolder), _trusts};
}

FileDescriptor TrustedFolder::file(const std::string& name) const {
    FileDescriptor file = openTrusted(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (!file || (fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode))) return file;
    errno = EINVAL;
    return FileDescriptor();
}

std::optional<std::string> TrustedFolder::contents(const std::string& name, std::size_t most) const {
    const FileDescriptor file = this->file(name);
    std::string bytes(most + 1, '\0');
    std::size_t size = 0;
    while (file && size < bytes.size()) {
        const ssize_t got = read(file.get(), bytes.data() + size, bytes.size() - size);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return {};
        if (got == 0) {
            bytes.resize(size);
            return bytes;
        }
        size += static_cast<std::size_t>(got);
    }
    if (file) errno = EFBIG;
    return {};
}

std::vector<std::string> TrustedFolder::names() const {
    std::vector<std::string> names;
    const int own = openat(_folder.get(), ".", kFolder);  // closed with what reads it
    const std::unique_ptr<DIR, decltype([](DIR* folder) { closedir(folder); })> folder(own < 0 ? nullptr
                                                                                               : fdopendir(own));
    if (!folder) return names;
    while (const dirent* entry = readdir(folder.get()))
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    std::ranges::sort(names);
    return names;
}

}  // namespace quorel
