// Stands for the pane: calls the kit over the buses and asks polkit, one command a line; answers each with its result
// and the milliseconds that it took. Arguments: how long silence and handling may last, in milliseconds.
//   ping-daemon | ping-agent USER | post-daemon NAME [BYTES] | post-agent USER NAME | post-edits NAME
//   open true|false|none: the own end, and its observer's pong
//   together THREADS TIMES: each thread pings and posts
//   create | copy FLAGS | free FLAGS: the administrator's right, with the status as result

#include <array>
#include <atomic>
#include <chrono>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "linux/pane/BusCommunicationCenter.h"
#include "linux/pane/PolkitAuthorization.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "pane/VXCommunicationProtocol.h"

using namespace quorel;

namespace {

class Observer : public VXCommunicationProtocol {
public:
    explicit Observer(bool alive) : _alive(alive) {}
    bool pong() const override { return _alive; }
    VXCommunicationCenter* communicationCenter() const override { return nullptr; }

private:
    const bool _alive;
};

Notification notification(const std::string& name, std::string_view object, std::size_t bytes = 0) {
    Notification result{name, std::string(object), {}};
    if (bytes > 0) result.userInfo = Value(Dictionary{{"Text", std::string(bytes, 'x')}});
    return result;
}

int together(BusCommunicationCenter& center, int threads, int times) {
    std::atomic<int> succeeded = 0;
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&] {
            for (int j = 0; j < times; ++j) {
                succeeded += center.pingDaemon();
                succeeded += center.postNotificationToDaemon(notification("Accept", kDaemonName, 100));
            }
        });
    for (auto& thread : running) thread.join();
    return succeeded;
}

}  // namespace

int main(int, char** arguments) {
    const BusCommunicationCenter::Limits limits{std::chrono::milliseconds(std::stoi(arguments[1])),
                                                std::chrono::milliseconds(std::stoi(arguments[2]))};
    std::shared_ptr<Observer> observer;
    BusCommunicationCenter center(limits);
    PolkitAuthorization polkit;
    AuthorizationRef reference = nullptr;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        std::string name;
        unsigned number = 0;
        int times = 0;
        std::size_t bytes = 0;
        int result = 0;
        words >> command;
        const auto began = std::chrono::steady_clock::now();
        if (command == "ping-daemon") result = center.pingDaemon();
        if (command == "ping-agent" && words >> number) result = center.pingAgentOfUser(number);
        if (command == "post-daemon" && words >> name) {
            words >> bytes;
            result = center.postNotificationToDaemon(notification(name, kDaemonName, bytes));
        }
        if (command == "post-edits" && words >> name)
            result = center.postNotificationToDaemon(notification(name, kDaemonName), Value(Dictionary())).isHandled;
        if (command == "post-agent" && words >> number >> name)
            result = center.postNotificationToAgentOfUser(notification(name, kUserAgentName), number);
        if (command == "open" && words >> name) {
            if (name != "none") observer = std::make_shared<Observer>(name == "true");
            center.setObserver(observer);
            center.createServerConnection();
        }
        if (command == "together" && words >> number >> times)
            result = together(center, static_cast<int>(number), times);
        if (command == "create") result = polkit.AuthorizationCreate(0, reference);
        const std::array<AuthorizationItem, 1> right{AuthorizationItem{"system.privilege.admin", {}, 0}};
        if (command == "copy" && words >> number) result = polkit.AuthorizationCopyRights(reference, right, number);
        if (command == "free" && words >> number)
            result = polkit.AuthorizationFree(std::exchange(reference, nullptr), number);
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - began;
        std::cout << result << ' ' << took.count() << std::endl;
    }
}
