#include "linux/JournalLog.h"

#define SD_JOURNAL_SUPPRESS_LOCATION  // this file's name would tell nobody anything
#include <syslog.h>
#include <systemd/sd-journal.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

const char* programName = "quorel";

void writeLine(std::string_view line) {
    std::string text(line);
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    // A service's standard error stream is the journal already.
    if (!std::getenv("JOURNAL_STREAM"))
        sd_journal_send("MESSAGE=%s", text.c_str(), "PRIORITY=%i", LOG_INFO, "SYSLOG_IDENTIFIER=%s", programName,
                        nullptr);
    std::fprintf(stderr, "%s: %s\n", programName, text.c_str());
}

}  // namespace

void installJournalLog(const char* program) {
    programName = program;
    setMOLLogSink(writeLine);
}

}  // namespace quorel
