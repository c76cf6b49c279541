// A program that can be pinged and sent notifications: bus_receiver session|system NAME. Says "ready" when it can be
// reached, and ends with its input. What becomes of a notification depends on its name:
//   Accept, Refuse (with all that is known of it), Drop (no answer), Hold (none before the end), Late (after 1.5 s)

#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "linux/BusEndpoint.h"

using namespace quorel;

int main(int, char** arguments) {
    std::vector<BusAnswer> held;
    std::vector<std::thread> late;
    BusEndpoint::Options options;
    options.bus = arguments[1] == std::string("system") ? Bus::System : Bus::Session;
    options.name = arguments[2];
    options.handler = [&](const BusNotification& notification, const BusAnswer& answer) {
        const auto& [name, object, userInfo, sender] = notification;
        if (name == "Accept") answer.accept();
        if (name == "Refuse")
            answer.refuse("com.quorel.Error.Test", object + ' ' + std::to_string(userInfo.size()) + ' ' + sender);
        if (name == "Hold") held.push_back(answer);
        if (name == "Late")
            late.emplace_back([answer] {
                std::this_thread::sleep_for(std::chrono::milliseconds(1500));
                answer.accept();
                answer.refuse("com.quorel.Error.Test", "An answer that comes second");
            });
    };
    std::string error;
    {
        const auto endpoint = BusEndpoint::open(std::move(options), error);
        std::cout << (endpoint ? "ready" : error) << std::endl;
        if (!endpoint) return 1;
        for (std::string line; std::getline(std::cin, line);) {
        }
    }
    // Answers outlive the endpoint here; they then go nowhere.
    for (auto& thread : late) thread.join();
}
