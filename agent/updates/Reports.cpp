#include "agent/updates/Reports.h"

#include "kit/update/VersionOrder.h"
#include "words/Language.h"

namespace quorel {

std::optional<Message> Reports::report(const VXUpdateChecker& checker, bool succeeded, bool askedByHand) {
    const auto version = succeeded ? checker.latestVersion() : std::nullopt;
    if (version) {
        const bool told = !_newestTold.empty() && compareVersions(*version, _newestTold) <= 0;
        if (told && !askedByHand) return {};
        if (!told) _newestTold = *version;
        Message message{translated("New version available"),
                        filled(translated("Version {1} can be downloaded."), {*version})};
        message.icon = "software-update-available";
        if (const std::string page = checker.latestVersionURL(); !page.empty()) {
            message.buttons = {{page, translated("Download")}};
            message.withoutButtons = page;
        }
        return message;
    }
    if (!askedByHand) return {};
    if (succeeded) return Message{translated("Up to date"), translated("This is the latest version.")};
    return Message{translated("Update check failed"), translated("The update service could not be reached.")};
}

}  // namespace quorel
