// Stands for the pane: "ping" tells whether the daemon answers, "save FILE" posts the preferences of a file. Answers
// with "yes" or "no" and how many milliseconds it took.

#include <chrono>
#include <iostream>
#include <string_view>

#include "linux/BusCommunicationCenter.h"
#include "linux/RootedPropertyListFiles.h"
#include "model/Names.h"

using namespace quorel;

int main(int count, char** arguments) {
    BusCommunicationCenter center;
    const auto started = std::chrono::steady_clock::now();
    const bool done =
        count < 3
            ? center.pingDaemon()
            : center.postNotificationToDaemon({std::string(kDaemonMustReloadPrefs), std::string(kDaemonName),
                                               RootedPropertyListFiles().dictionaryWithContentsOfFile(arguments[2])});
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
    std::cout << (done ? "yes " : "no ") << took.count() << std::endl;
}
