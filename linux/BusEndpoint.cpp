#include "linux/BusEndpoint.h"
#include "model/Names.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace quorel {

namespace {

using Ticket = std::uint64_t;  // stands for a message outside the thread that may touch messages

constexpr std::uint64_t kPatienceMicroseconds = 1'000'000;  // with the bus itself

struct Outgoing {
    Ticket ticket = 0;
    std::string errorName;  // empty: accepted
    std::string text;
};

}  // namespace

/// Answers on their way to the endpoint's thread.
struct BusEndpoint::Outbox {
    Outbox() : wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Outbox() {
        if (wakeUp >= 0) close(wakeUp);
    }

    void put(Outgoing answer) {
        {
            const std::lock_guard lock(mutex);
            answers.push_back(std::move(answer));
        }
        wake();
    }

    void stop() {
        stopping = true;
        wake();
    }

    std::vector<Outgoing> take() {
        std::uint64_t count;
        [[maybe_unused]] const auto size = read(wakeUp, &count, sizeof count);
        const std::lock_guard lock(mutex);
        return std::exchange(answers, {});
    }

    const int wakeUp;
    std::atomic<bool> stopping = false;

private:
    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto size = write(wakeUp, &one, sizeof one);
    }

    std::mutex mutex;
    std::vector<Outgoing> answers;
};

struct BusAnswer::State {
    State(Ticket itsTicket, std::weak_ptr<BusEndpoint::Outbox> itsOutbox)
        : ticket(itsTicket), outbox(std::move(itsOutbox)) {}
    ~State() { send(wire::kFailed, "The notification was not handled."); }

    void send(std::string_view errorName, std::string_view text) {
        if (answered.exchange(true)) return;
        if (const auto box = outbox.lock()) box->put({ticket, std::string(errorName), std::string(text)});
    }

    const Ticket ticket;
    const std::weak_ptr<BusEndpoint::Outbox> outbox;
    std::atomic<bool> answered = false;
};

void BusAnswer::accept() const {
    _state->send({}, {});
}

void BusAnswer::refuse(std::string_view errorName, std::string_view text) const {
    _state->send(errorName, text);
}

/// The connection, and all that belongs to the endpoint's thread once that runs.
class BusEndpoint::Server {
public:
    explicit Server(Options options) : outbox(std::make_shared<Outbox>()), _options(std::move(options)) {}

    /// Nothing on success, otherwise the reason.
    std::string connect() {
        static constexpr sd_bus_vtable kMethods[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD_WITH_ARGS(wire::kPing, SD_BUS_NO_ARGS, SD_BUS_RESULT("b", alive), &Server::ping,
                                    SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD_WITH_ARGS(wire::kPostNotification, SD_BUS_ARGS("s", name, "s", object, "ay", userInfo),
                                    SD_BUS_NO_RESULT, &Server::post, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END};
        if (outbox->wakeUp < 0) return std::strerror(errno);
        _bus = beginConnection(_options.bus);
        if (!_bus) return "there is no bus";
        if (!becomeReady()) return "the bus does not answer";
        sd_bus_set_method_call_timeout(_bus.get(), kPatienceMicroseconds);
        int result = sd_bus_add_object_vtable(_bus.get(), nullptr, wire::kPath, wire::kInterface, kMethods, this);
        if (result < 0) return std::strerror(-result);
        if (!_options.name.empty()) {
            result = sd_bus_request_name(_bus.get(), _options.name.c_str(), 0);
            if (result < 0 && _options.nameRequired)
                return "the name is refused: " + std::string(std::strerror(-result));
        }
        return {};
    }

    void run() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);  // signals are the business of the program's own threads
        while (!outbox->stopping) {
            deliverAnswers();
            const int result = sd_bus_process(_bus.get(), nullptr);
            if (result > 0) continue;
            if (result < 0 || !wait()) {
                if (_options.lost) _options.lost();
                return;
            }
        }
        deliverAnswers();
    }

    const std::shared_ptr<Outbox> outbox;

private:
    bool becomeReady() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::microseconds(kPatienceMicroseconds);
        while (sd_bus_is_ready(_bus.get()) == 0) {
            const int result = sd_bus_process(_bus.get(), nullptr);
            if (result > 0) continue;
            if (result < 0 || std::chrono::steady_clock::now() >= deadline) return false;
            sd_bus_wait(_bus.get(), kPatienceMicroseconds / 10);
        }
        return sd_bus_is_ready(_bus.get()) > 0;
    }

    /// False when the bus has gone.
    bool wait() {
        const int events = sd_bus_get_events(_bus.get());
        std::uint64_t due = 0;
        if (events < 0 || sd_bus_get_timeout(_bus.get(), &due) < 0) return false;
        pollfd files[] = {{sd_bus_get_fd(_bus.get()), static_cast<short>(events), 0}, {outbox->wakeUp, POLLIN, 0}};
        return poll(files, 2, milliseconds(due)) >= 0 || errno == EINTR;
    }

    /// From a moment of the monotonic clock in microseconds to poll's idea of a timeout.
    static int milliseconds(std::uint64_t due) {
        if (due == UINT64_MAX) return -1;
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        const auto moment =
            static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000;
        return due <= moment ? 0 : static_cast<int>(std::min<std::uint64_t>((due - moment) / 1000 + 1, 60'000));
    }

    void deliverAnswers() {
        for (const auto& answer : outbox->take()) deliver(answer);
    }

    void deliver(const Outgoing& answer) {
        const auto found = _unanswered.find(answer.ticket);
        if (found == _unanswered.end()) return;
        if (answer.errorName.empty()) {
            sd_bus_reply_method_return(found->second.get(), "");
        } else {
            const sd_bus_error error = SD_BUS_ERROR_MAKE_CONST(answer.errorName.c_str(), answer.text.c_str());
            sd_bus_reply_method_error(found->second.get(), &error);
        }
        _unanswered.erase(found);
    }

    static int ping(sd_bus_message* message, void* self, sd_bus_error*) {
        const auto& pong = static_cast<Server*>(self)->_options.pong;
        return sd_bus_reply_method_return(message, "b", static_cast<int>(!pong || pong()));
    }

    static int post(sd_bus_message* message, void* self, sd_bus_error* error) {
        auto& server = *static_cast<Server*>(self);
        const char* name = nullptr;
        const char* object = nullptr;
        const void* bytes = nullptr;
        std::size_t size = 0;
        int result = sd_bus_message_read(message, "ss", &name, &object);
        if (result >= 0) result = sd_bus_message_read_array(message, 'y', &bytes, &size);
        if (result < 0) return result;
        if (!server._options.handler)
            return sd_bus_error_set(error, wire::kUnknownNotification, "This program takes no notifications.");

        const char* sender = sd_bus_message_get_sender(message);
        BusNotification notification{name, object, {}, sender ? sender : ""};
        if (size > 0) notification.userInfo.assign(static_cast<const char*>(bytes), size);
        const Ticket ticket = ++server._lastTicket;
        server._unanswered.emplace(ticket, BusMessagePointer(sd_bus_message_ref(message), sd_bus_message_unref));
        server._options.handler(notification, BusAnswer(std::make_shared<BusAnswer::State>(ticket, server.outbox)));
        return 1;
    }

    const Options _options;
    BusConnection _bus{nullptr, sd_bus_close_unref};
    std::map<Ticket, BusMessagePointer> _unanswered;
    Ticket _lastTicket = 0;
};

std::unique_ptr<BusEndpoint> BusEndpoint::open(Options options, std::string& error) try {
    auto server = std::make_unique<Server>(std::move(options));
    error = server->connect();
    if (!error.empty()) return nullptr;
    return std::unique_ptr<BusEndpoint>(new BusEndpoint(std::move(server)));
} catch (const std::exception& exception) {
    error = exception.what();
    return nullptr;
}

BusEndpoint::BusEndpoint(std::unique_ptr<Server> server)
    : _outbox(server->outbox), _server(std::move(server)), _thread([this] { _server->run(); }) {}

BusEndpoint::~BusEndpoint() {
    _outbox->stop();
    _thread.join();
}

}  // namespace quorel
