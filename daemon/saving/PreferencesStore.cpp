#include "daemon/saving/PreferencesStore.h"

#include <sys/stat.h>
#include <unistd.h>

#include "daemon/saving/FileReplacement.h"
#include "model/Preferences.h"

namespace quorel {

Value PreferencesStore::read() const {
    return _files.dictionaryWithContentsOfFile(preferences::kFile);
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
