// The agent's item in the panel, told by a test what to show: each line on standard input is "show", "hide", "gone", or
// occurrences to come, each as ACTION|STEP|TOKEN, one a quarter of an hour. What people choose is written, one line
// each.

#include <cstdio>
#include <iostream>
#include <sstream>

#include "agent/tray/Tray.h"
#include "model/Dictionary.h"
#include "words/Language.h"

using namespace quorel;

static Array occurrencesIn(const std::string& line) {
    std::int64_t at = 1795475700;  // 2026-11-23 23:15 UTC
    Array occurrences;
    std::istringstream words(line);
    for (std::string action, step, token; std::getline(words >> std::ws, action, '|'); at += 900) {
        std::getline(words, step, '|') >> token;
        occurrences.emplace_back(
            Dictionary{{"Action", action}, {"Step", step}, {"Token", token}, {"At", at}, {"By", "alice"}});
    }
    return occurrences;
}

int main() {
    speakUsersLanguage();
    const auto say = [](const std::string& words) { std::cout << words << std::endl; };
    EventLoop loop;
    Tray tray(loop, {[&](const TrayContent::Choice& choice) {
                         static constexpr const char* kWords[] = {"postpone", "skip", "undo", "pause", "resume"};
                         say(kWords[choice.what] + (" " + choice.token) + " " + std::to_string(choice.length));
                     },
                     [&] { say("check"); }, [] { return true; }, [&] { say("settings"); }});
    const auto input = whenReadable(loop, 0, [&] {
        std::string line;
        if (!std::getline(std::cin, line)) return loop.end(0);
        if (line == "show" || line == "hide") {
            tray.show(line == "show");
        } else if (line == "gone") {
            tray.daemonHasGone();
        } else {
            tray.update({occurrencesIn(line), {}, true, true, true});
        }
        say("done");
    });
    return loop.run();
}
