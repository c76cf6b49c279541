#include "linux/pane/RootedPropertyListFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>

#include "model/PropertyList.h"

namespace quorel {

namespace {

/// A regular file, whole. Nothing for anything else; what is too long to be a property list is cut off behind that.
std::optional<std::string> contentsOfFile(const std::string& path) {
    const int file =
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);  // a pipe would wait for a writer
    if (file < 0) return {};
    struct stat status {};
    std::string contents;
    bool complete = false;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        contents.resize(std::min(static_cast<std::size_t>(status.st_size), kMaximumPropertyListBytes) + 1);
        std::size_t size = 0;
        for (;;) {
            const ssize_t got = read(file, contents.data() + size, contents.size() - size);
            if (got < 0 && errno == EINTR) continue;
            if (got > 0) size += static_cast<std::size_t>(got);
            complete = got == 0;
            if (got <= 0 || size == contents.size()) break;
        }
        contents.resize(size);
    }
    close(file);
    if (!complete) return {};
    return contents;
}

}  // namespace

Value RootedPropertyListFiles::dictionaryWithContentsOfFile(std::string_view path) const try {
    const auto contents = contentsOfFile(_root + std::string(path));
    if (!contents) return {};
    Value root = decodePropertyList(*contents);
    return root.isDictionary() ? root : Value();
} catch (const std::exception&) {
    return {};
}

}  // namespace quorel
