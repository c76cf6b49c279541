// The agent's item in the panel, told by a test what to show: each line on standard input is "show", "hide", "gone", or
// occurrences to come, each as ACTION|STEP|TOKEN, one a quarter of an hour. What people choose is written, one line
// each.

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include "agent/tray/Tray.h"
#include "linux/Language.h"
#include "model/Dictionary.h"

namespace quorel {

namespace {

constexpr std::int64_t kFirst = 1795475700;  // 2026-11-23 23:15 UTC

Array occurrencesIn(const std::string& line) {
    Array occurrences;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        std::istringstream parts(word);
        std::string action, step, token;
        std::getline(std::getline(std::getline(parts, action, '|'), step, '|'), token);
        const std::int64_t at = kFirst + 900 * static_cast<std::int64_t>(occurrences.size());
        occurrences.emplace_back(
            Dictionary{{"Action", action}, {"Step", step}, {"Token", token}, {"At", at}, {"By", "alice"}});
    }
    return occurrences;
}

void say(const std::string& words) {
    std::puts(words.c_str());
    std::fflush(stdout);
}

void run() {
    EventLoop loop;
    Tray tray(loop, {[](const std::string& token) { say("skip " + token); },
                     [](const std::string& token) { say("postpone " + token); }, [] { say("check"); },
                     [] { say("settings"); }});
    const auto input = whenReadable(loop, 0, [&] {
        std::string line;
        if (!std::getline(std::cin, line)) return loop.end(0);
        if (line == "show" || line == "hide") {
            tray.show(line == "show");
        } else if (line == "gone") {
            tray.daemonHasGone();
        } else {
            tray.update(occurrencesIn(line), true, true);
        }
        say("done");
    });
    loop.run();
}

}  // namespace

}  // namespace quorel

int main() {
    quorel::speakUsersLanguage();
    quorel::run();
}
