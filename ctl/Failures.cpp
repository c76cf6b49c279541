#include "ctl/Failures.h"

#include <cstdio>

#include "ctl/ScheduleText.h"
#include "model/PlainText.h"
#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

void complain(const std::string& text) {
    std::fprintf(stderr, "quorelctl: %s\n", plainLines(text).c_str());
}

ExitStatus fail(const DaemonClient::Answer& answer) {
    using Failure = DaemonClient::Failure;
    switch (answer.failure) {
        case Failure::kNoBus:
            complain(translated("The system bus cannot be reached."));
            return ExitStatus::kFailed;
        case Failure::kNotRunning:
            complain(translated("The daemon is not running. \"systemctl start quorel-daemon\" starts it."));
            return ExitStatus::kNotRunning;
        case Failure::kNoAnswer:
            complain(translated("The daemon does not answer."));
            return ExitStatus::kFailed;
        case Failure::kNotSent:
            complain(translated("This is no text that can be sent: it is not in UTF-8."));
            return ExitStatus::kUsage;
        case Failure::kNotUnderstood:
            complain(translated("The daemon's answer cannot be understood."));
            return ExitStatus::kFailed;
        default:
            break;
    }
    const bool isOther = answer.error == SD_BUS_ERROR_UNKNOWN_OBJECT ||
                         answer.error == SD_BUS_ERROR_UNKNOWN_INTERFACE || answer.error == SD_BUS_ERROR_UNKNOWN_METHOD;
    complain(isOther ? translated("The daemon that is running is of another version.")
                     : refusalText(answer.error, answer.text));
    const bool isGone = answer.error == wire::kNoSuchOccurrence || answer.error == wire::kNoSuchPause;
    return isGone ? ExitStatus::kNotFound : ExitStatus::kFailed;
}

ExitStatus misused(const std::string& text) {
    complain(text + "\n" + translated("\"quorelctl --help\" tells what there is."));
    return ExitStatus::kUsage;
}

ExitStatus notFound(const std::string& text) {
    complain(text);
    return ExitStatus::kNotFound;
}

ExitStatus refuseWords(const std::vector<TextFault>& faults, const std::string& file) {
    for (const TextFault& fault : faults) {
        const std::string place = file + ":" + std::to_string(fault.line) + ":" + std::to_string(fault.column) + ": ";
        complain((file.empty() ? "" : place) + sentenceOf(fault));
    }
    return ExitStatus::kUsage;
}

}  // namespace quorel
