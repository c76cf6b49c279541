#include "linux/JournalLog.h"

// sd_journal_send would note the file and line that call it: these here, whatever the message is about.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <sys/stat.h>
#include <sys/uio.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kit/MOLLog.h"
#include "model/PlainText.h"

namespace quorel {

namespace {

const char* programName = "quorel";

/// The service manager names the stream that it has made. The variable alone is handed on to programs with another one.
bool errorStreamIsJournal() {
    const char* named = std::getenv("JOURNAL_STREAM");
    struct stat status {};
    return named && fstat(STDERR_FILENO, &status) == 0 &&
           std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino) == named;
}

void writeLine(std::string_view line) {
    const std::string text = plainLine(line);
    if (errorStreamIsJournal()) {
        std::fprintf(stderr, "%s\n", text.c_str());  // the journal names the program by itself
        return;
    }
    sd_journal_send("MESSAGE=%s", text.c_str(), "PRIORITY=%i", LOG_INFO, "SYSLOG_IDENTIFIER=%s", programName, nullptr);
    std::fprintf(stderr, "%s: %s\n", programName, text.c_str());
}

}  // namespace

void installJournalLog(const char* program) {
    programName = program;
    setMOLLogSink(writeLine);
}

void writeJournalEntry(std::string_view messageId, std::string_view message,
                       const std::vector<std::pair<std::string_view, std::string>>& fields) {
    const std::string text = plainLine(message);
    if (!errorStreamIsJournal()) {
        std::fprintf(stderr, "%s: %s\n", programName, text.c_str());
        return;
    }
    std::vector<std::string> entries = {"MESSAGE=" + text, "MESSAGE_ID=" + std::string(messageId),
                                        "PRIORITY=" + std::to_string(LOG_INFO),
                                        "SYSLOG_IDENTIFIER=" + std::string(programName)};
    for (const auto& [name, value] : fields) entries.push_back(std::string(name) + "=" + plainLine(value));
    std::vector<iovec> parts;
    for (std::string& entry : entries) parts.push_back({entry.data(), entry.size()});
    sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

}  // namespace quorel
