#include "agent/Texts.h"

#include <cstdlib>

namespace quorel {

namespace {

constexpr Texts kEnglish = {
    .newVersionTitle = "New version available",
    .newVersionBefore = "Version ",
    .newVersionAfter = " can be downloaded.",
    .download = "Download",
    .upToDateTitle = "Up to date",
    .upToDate = "This is the latest version.",
    .failedTitle = "Update check failed",
    .failed = "The update service could not be reached.",
};

constexpr Texts kFrench = {
    .newVersionTitle = "Nouvelle version disponible",
    .newVersionBefore = "La version ",
    .newVersionAfter = " peut être téléchargée.",
    .download = "Télécharger",
    .upToDateTitle = "Logiciel à jour",
    .upToDate = "Vous avez la dernière version.",
    .failedTitle = "Vérification impossible",
    .failed = "Le service de mise à jour est inaccessible.",
};

}  // namespace

const Texts& textsForLocale(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
    return language == "fr" ? kFrench : kEnglish;
}

std::string messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); value && *value) return value;
    return {};
}

}  // namespace quorel
