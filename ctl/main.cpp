// quorelctl: what the daemon has planned, what became of it, and a way to say no.

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "ProductVersion.h"
#include "ctl/Commands.h"
#include "words/Language.h"

namespace quorel {

namespace {

constexpr int status(ExitStatus exit) {
    return static_cast<int>(exit);
}

int help() {
    std::fputs(translated("Usage: quorelctl [--json] [COMMAND]\n"
                          "\n"
                          "Shows what Quorel has planned for this computer, and lets you change your mind.\n"
                          "\n"
                          "Commands:\n"
                          "  status           how things stand (as without a command)\n"
                          "  next [N]         the next occurrences, 5 or N\n"
                          "  log [N]          what became of the last occurrences, 10 or N; the latest last\n"
                          "  skip TOKEN       not this time\n"
                          "  postpone TOKEN   15 minutes later\n"
                          "  modules          the actions that there are, and what they may do\n"
                          "\n"
                          "Options:\n"
                          "  --check FOLDER   of \"modules\": what is wrong with one that is not installed yet\n"
                          "  --json           answer in JSON\n"
                          "  --help           show this\n"
                          "  --version        show the version\n"),
               stdout);
    return status(ExitStatus::kDone);
}

int run(int count, char** arguments) {
    const option known[] = {{"json", no_argument, nullptr, 'j'},
                            {"check", required_argument, nullptr, 'c'},
                            {"help", no_argument, nullptr, 'h'},
                            {"version", no_argument, nullptr, 'v'},
                            {}};
    CommandLine line;
    for (int found; (found = getopt_long(count, arguments, "h", known, nullptr)) != -1;) {
        if (found == 'h') return help();
        if (found == 'v') {
            std::printf("quorelctl %s\n", product::kVersion);
            return status(ExitStatus::kDone);
        }
        if (found == '?') return status(ExitStatus::kUsage);  // getopt has said why
        if (found == 'c') line.check = optarg;
        if (found == 'j') line.json = true;
    }
    line.command = optind < count ? arguments[optind++] : "status";
    line.arguments.assign(arguments + optind, arguments + count);
    const ExitStatus exit = runCommand(line);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status(exit);
    return status(ExitStatus::kFailed);  // nobody could read it all
}

}  // namespace

}  // namespace quorel

int main(int count, char** arguments) try {
    quorel::speakUsersLanguage();
    return quorel::run(count, arguments);
} catch (const std::exception& exception) {
    quorel::complain(exception.what());
    return EXIT_FAILURE;
}
