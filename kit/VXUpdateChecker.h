#pragma once

#include <optional>
#include <string>

namespace quorel {

/// Knows the installed version and finds out the latest published one. Any thread.
class VXUpdateChecker {
public:
    virtual ~VXUpdateChecker() = default;

    /// The instance that the composition root installed, else one that finds nothing out; never null.
    static VXUpdateChecker* sharedInstance();
    /// Not owned; null for none. Install before the first pane is created, and for good.
    static void setSharedInstance(VXUpdateChecker* instance);

    virtual std::optional<std::string> versionString() const = 0;      ///< installed: "1.2"
    virtual std::optional<std::string> fullVersionString() const = 0;  ///< installed, with build: "1.2 (34)"

    /// Fetches the record of the latest version; blocks on the network for a bounded time.
    /// False when the service cannot be reached or its answer is of no use.
    virtual bool updateLatestVersionDictionary() = 0;
    /// After a successful fetch, the published version when it is newer than the installed one.
    virtual std::optional<std::string> latestVersion() const = 0;
    /// After a successful fetch, the http(s) address of the download page; empty before.
    virtual std::string latestVersionURL() const = 0;
};

}  // namespace quorel
