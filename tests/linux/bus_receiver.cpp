// A program that can be pinged and sent notifications: bus_receiver session|system NAME. Says "ready" when it can be
// reached, and ends with its input. What becomes of a notification depends on its name:
//   Accept, Refuse (with all that is known of it), Drop (no answer), Hold (none before the end), Late (after 1.5 s)

#include <sys/epoll.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "linux/bus/BusEndpoint.h"

using namespace quorel;

int main(int, char** arguments) try {
    EventLoop loop;
    std::vector<BusAnswer> held, late;
    LoopTimer delay(loop, [&] {
        late.back().accept();
        late.back().refuse("com.quorel.Error.Test", "An answer that comes second");
    });
    const auto bus = connectTo(arguments[1] == std::string("system") ? Bus::System : Bus::Session, loop);
    const BusEndpoint endpoint(bus.get(), [&](const BusNotification& notification, const BusAnswer& answer) {
        const auto& [name, object, userInfo, base, sender, mayAsk] = notification;
        if (name == "Accept") answer.accept();
        if (name == "Refuse")
            answer.refuse("com.quorel.Error.Test", std::string(object) + ' ' + std::to_string(userInfo.size()) +
                                                       (base ? "+" + std::to_string(base->size()) : "") + ' ' +
                                                       std::string(sender));
        if (name == "Hold") held.push_back(answer);
        if (name == "Late") {
            late.push_back(answer);
            delay.start(std::chrono::milliseconds(1500));
        }
    });
    if (!requestName(bus.get(), arguments[2])) throw std::runtime_error("the name is taken");
    std::cout << "ready" << std::endl;
    const auto ended = [](sd_event_source* source, int, std::uint32_t, void*) {
        return sd_event_exit(sd_event_source_get_event(source), 0);
    };
    sd_event_add_io(loop.get(), nullptr, STDIN_FILENO, EPOLLIN, ended, nullptr);
    return loop.run();
} catch (const std::exception& exception) {
    std::cout << exception.what() << std::endl;
    return 1;
}
