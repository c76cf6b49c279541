#include "daemon/PreferencesStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "model/Preferences.h"

namespace quorel {

namespace {

constexpr mode_t kReadableByAll = 0644;

/// An open file; closing it is all that it does by itself.
class File {
public:
    explicit File(int descriptor) : _descriptor(descriptor) {}
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int descriptor() const { return _descriptor; }
    explicit operator bool() const { return _descriptor >= 0; }
    bool close() { return _descriptor < 0 || ::close(std::exchange(_descriptor, -1)) == 0; }

private:
    int _descriptor;
};

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::filesystem::path pathBelow(const std::string& root) {
    return root + std::string(preferences::kFile);
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
    File file(openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kReadableByAll));
    if (!file) return failure("No new file can be made");
    const bool complete = fchmod(file.descriptor(), kReadableByAll) == 0 && writeAll(file.descriptor(), bytes) &&
                          fsync(file.descriptor()) == 0 && file.close();
    return complete ? std::string() : failure("The new file cannot be written");
}

}  // namespace

Value PreferencesStore::read() const {
    return _files.dictionaryWithContentsOfFile(preferences::kFile);
}

std::string PreferencesStore::write(std::string_view bytes) const {
    const std::filesystem::path path = pathBelow(_root);
    const std::string name = path.filename().string();
    const std::string temporary = temporaryName(path);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    const File folder(open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return failure("There is no folder");
    std::string reason = writeTemporary(folder.descriptor(), temporary, bytes);
    if (reason.empty() && renameat(folder.descriptor(), temporary.c_str(), folder.descriptor(), name.c_str()) != 0)
        reason = failure("The new file cannot be put in place");
    if (!reason.empty()) unlinkat(folder.descriptor(), temporary.c_str(), 0);
    // From here on the new file is the one that everybody sees: a failure would only be about a loss of power.
    if (reason.empty()) fsync(folder.descriptor());
    return reason;
}

bool PreferencesStore::keepUnreadable() const {
    const std::string path = pathBelow(_root);
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || read().isPresent()) return false;
    const std::string kept = path + ".unreadable";
    unlink(kept.c_str());
    return link(path.c_str(), kept.c_str()) == 0;
}

void PreferencesStore::removeLeftovers() const {
    const std::filesystem::path path = pathBelow(_root);
    unlink((path.parent_path() / temporaryName(path)).c_str());
}

}  // namespace quorel
