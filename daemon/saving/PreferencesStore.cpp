#include "daemon/saving/PreferencesStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "daemon/saving/FileReplacement.h"
#include "linux/FileDescriptor.h"
#include "model/Preferences.h"

namespace quorel {

namespace {

std::string cannotBeRead() {
    return std::string("It cannot be read: ") + std::strerror(errno) + ".";
}

}  // namespace

Value PreferencesStore::read() const {
    return _files.dictionaryWithContentsOfFile(preferences::kFile);
}

PreferencesStore::Contents PreferencesStore::contents(std::size_t most) const {
    const FileDescriptor file(open(_path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file && (errno == ENOENT || errno == ENOTDIR)) return {};
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) return {true, cannotBeRead(), {}};
    if (!S_ISREG(status.st_mode)) return {true, "It is no file.", {}};
    if ((status.st_uid != 0 && status.st_uid != geteuid()) || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return {true, "Others than root can write it.", {}};
    std::string bytes(std::min(static_cast<std::size_t>(status.st_size), most + 1), '\0');
    const ssize_t size = pread(file.get(), bytes.data(), bytes.size(), 0);
    if (size < 0) return {true, cannotBeRead(), {}};
    if (bytes.size() > most) return {true, "It is larger than " + std::to_string(most >> 20) + " MiB.", {}};
    bytes.resize(static_cast<std::size_t>(size));
    return {true, {}, std::move(bytes)};
}

std::string PreferencesStore::write(std::string_view bytes) const {
    return replaceFile(_path, bytes);
}

bool PreferencesStore::keepUnreadable() const {
    struct stat status {};
    if (lstat(_path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || read().isPresent()) return false;
    const std::string kept = _path + ".unreadable";
    unlink(kept.c_str());
    return link(_path.c_str(), kept.c_str()) == 0;
}

void PreferencesStore::removeLeftovers() const {
    quorel::removeLeftovers(_path);
}

}  // namespace quorel
