// quorel-agent [--root DIR] [--feed URL] [--ca-file FILE]

#include <getopt.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <utility>

#include "ProductVersion.h"
#include "agent/Agent.h"
#include "kit/MOLLog.h"
#include "kit/update/UpdateRecord.h"
#include "linux/JournalLog.h"
#include "words/Language.h"

namespace quorel {

namespace {

std::optional<Agent::Options> parse(int count, char** arguments) {
    Agent::Options options;
    options.updates.feed = product::kUpdateFeed;
    options.updates.installedVersion = product::kVersion;
    options.updates.installedBuild = product::kBuild;
    const option known[] = {{"root", required_argument, nullptr, 'r'},
                            {"feed", required_argument, nullptr, 'f'},
                            {"ca-file", required_argument, nullptr, 'c'},
                            {}};
    for (int found; (found = getopt_long(count, arguments, "", known, nullptr)) != -1;) {
        if (found == 'r') options.root = optarg;
        if (found == 'f') options.updates.feed = optarg;
        if (found == 'c') options.updates.caFile = optarg;
        if (found == '?') return {};
    }
    if (optind != count) return {};
    const auto& feed = options.updates.feed;
    if (!feed.empty() && !isFeedAddress(feed)) {
        std::fprintf(stderr, "Not an address of an update feed: %s\n", feed.c_str());
        return {};
    }
    return options;
}

}  // namespace

}  // namespace quorel

int main(int count, char** arguments) try {
    auto options = quorel::parse(count, arguments);
    if (!options) {
        std::fprintf(stderr, "Usage: %s [--root DIR] [--feed URL] [--ca-file FILE]\n", arguments[0]);
        return 2;
    }
    quorel::installJournalLog("quorel-agent");
    quorel::speakUsersLanguage();
    std::signal(SIGPIPE, SIG_IGN);  // whoever reads the log may go first
    std::signal(SIGCHLD, SIG_IGN);  // nobody waits for a browser
    return quorel::Agent(std::move(*options)).run();
} catch (const std::exception& exception) {
    quorel::MOLLog("Cannot start: %s.", exception.what());
    return 1;
}
