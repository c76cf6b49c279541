#include "daemon/saving/FileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "linux/FileDescriptor.h"

namespace quorel {

namespace {

constexpr mode_t kReadableByAll = 0644;

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// In the same folder, so that it can be renamed; hidden there.
std::string temporaryName(const std::filesystem::path& file) {
    return "." + file.filename().string() + ".new";
}

std::string failure(const char* step) {
    return std::string(step) + ": " + std::strerror(errno);
}

/// Makes the whole temporary file. What stands at its place, a link to elsewhere too, is removed, never followed.
std::string writeTemporary(int folder, const std::string& name, std::string_view bytes) {
    if (unlinkat(folder, name.c_str(), 0) != 0 && errno != ENOENT) return failure("The place is taken");
    FileDescriptor file(
        openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kReadableByAll));
    if (!file) return failure("No new file can be made");
    const bool complete = fchmod(file.get(), kReadableByAll) == 0 && writeAll(file.get(), bytes) &&
                          fsync(file.get()) == 0 && file.close();
    return complete ? std::string() : failure("The new file cannot be written");
}

}  // namespace

std::string replaceFile(const std::string& file, std::string_view bytes, Lasts lasts) {
    const std::filesystem::path path = file;
    const std::string name = path.filename().string();
    const std::string temporary = temporaryName(path);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    const FileDescriptor folder(open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return failure("There is no folder");
    std::string reason = writeTemporary(folder.get(), temporary, bytes);
    if (reason.empty() && renameat(folder.get(), temporary.c_str(), folder.get(), name.c_str()) != 0)
        reason = failure("The new file cannot be put in place");
    if (!reason.empty()) unlinkat(folder.get(), temporary.c_str(), 0);
    // From here on the new file is the one that everybody sees: a failure would only be about a loss of power.
    if (reason.empty() && lasts == Lasts::kByNow) fsync(folder.get());
    return reason;
}

void removeLeftovers(const std::string& file) {
    const std::filesystem::path path = file;
    unlink((path.parent_path() / temporaryName(path)).c_str());
}

}  // namespace quorel
