#include "kit/ActionSummary.h"

namespace quorel::summary {

namespace {

bool flagUnder(const char* key, const Value& actionSummary) {
    const Value& flag = actionSummary[key];
    return !flag.isText() && flag.intValue() != 0;
}

}  // namespace

const char* dotImageName(bool startup, bool wakeUp) {
    if (startup) return wakeUp ? "MixedDot.png" : "StartupDot.png";
    return wakeUp ? "WakeUpDot.png" : "NoneDot.png";
}

const char* dotNameOf(const Value& actionSummary) {
    const bool startup = flagUnder(kStartup, actionSummary);
    const bool wakeUp = flagUnder(kWakeUp, actionSummary);
    return startup || wakeUp ? dotImageName(startup, wakeUp) : nullptr;
}

std::string sentenceOf(const Value& actionSummary, const std::function<std::string(const char* key)>& localized) {
    std::string sentence;
    const auto add = [&sentence](const std::string& text) {
        if (text.empty()) return;
        if (!sentence.empty()) sentence += ", ";
        sentence += text;
    };
    for (const char* key : {kTime, kName, kAction}) add(actionSummary[key].text());
    if (flagUnder(kStartup, actionSummary)) add(localized("demarre l'ordinateur"));
    if (flagUnder(kWakeUp, actionSummary)) add(localized("reveille l'ordinateur"));
    return sentence;
}

}  // namespace quorel::summary
