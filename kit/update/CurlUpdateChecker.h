#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <string>

#include "kit/VXUpdateChecker.h"
#include "kit/update/UpdateRecord.h"

namespace quorel {

/// Fetches the record of the latest version over HTTPS. The record's format and the limits that a feed must keep
/// are described in docs/update-feed.md. Several checks may run side by side; each blocks its own thread.
class CurlUpdateChecker : public VXUpdateChecker {
public:
    struct Settings {
        std::string feed;              ///< isFeedAddress; with any other, the empty one too, every fetch fails
        std::string installedVersion;  ///< "1.2"; empty when unknown
        std::string installedBuild;    ///< "34"; may be empty
        std::string caFile;            ///< authorities to trust instead of the system's; empty for the system's
        std::chrono::milliseconds timeLimit{10'000};  ///< of a whole fetch, redirects included
    };

    explicit CurlUpdateChecker(Settings settings);

    std::optional<std::string> versionString() const override;
    std::optional<std::string> fullVersionString() const override;
    bool updateLatestVersionDictionary() override;
    /// Judge the last record that could be fetched; a later failure leaves it in place.
    std::optional<std::string> latestVersion() const override;
    std::string latestVersionURL() const override;

    /// From now on every check fails, those under way within a second. Any thread.
    void giveUp() { _givenUp = true; }

private:
    const Settings _settings;
    std::atomic<bool> _givenUp = false;
    mutable std::mutex _mutex;
    std::optional<UpdateRecord> _record;
};

}  // namespace quorel
