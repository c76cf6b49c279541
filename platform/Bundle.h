#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/Value.h"
#include "platform/View.h"

namespace quorel {

/// A directory of resources and loadable code. Main thread.
class Bundle : public Object {
public:
    virtual std::string bundlePath() const = 0;
    virtual std::string builtInPlugInsPath() const = 0;
    virtual Value infoDictionary() const = 0;  ///< empty where there is none
    Value objectForInfoDictionaryKey(std::string_view key) const { return infoDictionary()[key]; }

    /// Loads the code; false when there is none or it does not link. Loading again is harmless.
    virtual bool load() = 0;
    /// A class in the bundle's code, or one that the face has for every bundle, with code or without, as
    /// "VXDescribedPlugIn"; null when there is none of that name. What the class can do is found by casting it to an
    /// interface.
    virtual std::shared_ptr<Object> classNamed(std::string_view name) = 0;

    /// The text for `key` in the user's language; `value`, or the key itself, when the table has none.
    /// An empty table name is the default table.
    virtual std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                        std::string_view table) const = 0;
    virtual std::shared_ptr<Image> imageNamed(std::string_view name) const = 0;  ///< null when there is none
};

/// Finds bundles on disk. Main thread.
class Bundles {
public:
    virtual ~Bundles() = default;
    virtual std::shared_ptr<Bundle> bundleWithPath(std::string_view path) = 0;  ///< null when it cannot be opened
    /// Paths of the entries with this extension that lie directly in the directory, by the bytes of their names; none
    /// for a missing one.
    virtual std::vector<std::string> pathsForResourcesOfTypeInDirectory(std::string_view extension,
                                                                        std::string_view directory) = 0;
};

}  // namespace quorel
