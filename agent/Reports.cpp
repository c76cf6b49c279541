#include "agent/Reports.h"

#include "kit/update/VersionOrder.h"

namespace quorel {

std::optional<Message> Reports::report(const VXUpdateChecker& checker, bool succeeded, bool askedByHand) {
    const auto version = succeeded ? checker.latestVersion() : std::nullopt;
    if (version) {
        const bool told = !_newestTold.empty() && compareVersions(*version, _newestTold) <= 0;
        if (told && !askedByHand) return {};
        if (!told) _newestTold = *version;
        Message message{_texts.newVersionTitle, _texts.newVersionBefore + *version + _texts.newVersionAfter};
        message.icon = "software-update-available";
        if (const std::string page = checker.latestVersionURL(); !page.empty()) {
            message.buttons = {{page, _texts.download}};
            message.withoutButtons = page;
        }
        return message;
    }
    if (!askedByHand) return {};
    if (succeeded) return Message{_texts.upToDateTitle, _texts.upToDate};
    return Message{_texts.failedTitle, _texts.failed};
}

}  // namespace quorel
