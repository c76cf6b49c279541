// Checks for updates: update_probe VERSION CA-FILE MILLISECONDS FEED [THREADS]. At each line of its input it runs a
// check, on that many threads at a time, and says how many have succeeded, then the newer version and its page, with
// "-" for none.

#include <atomic>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "kit/update/CurlUpdateChecker.h"

using namespace quorel;

int main(int count, char** arguments) {
    CurlUpdateChecker checker({.feed = arguments[4],
                               .installedVersion = arguments[1],
                               .installedBuild = {},
                               .caFile = arguments[2],
                               .timeLimit = std::chrono::milliseconds(std::stoi(arguments[3]))});
    const int threads = count > 5 ? std::stoi(arguments[5]) : 1;
    for (std::string line; std::getline(std::cin, line);) {
        std::atomic<int> succeeded = 0;
        std::vector<std::thread> running;
        for (int i = 0; i < threads; ++i)
            running.emplace_back([&] {
                succeeded += checker.updateLatestVersionDictionary();
                checker.latestVersion();
            });
        for (auto& thread : running) thread.join();
        const std::string page = checker.latestVersionURL();
        std::cout << succeeded << '\t' << checker.latestVersion().value_or("-") << '\t' << (page.empty() ? "-" : page)
                  << std::endl;
    }
}
