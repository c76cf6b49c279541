#include "agent/Notifier.h"

#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr std::chrono::seconds kPatience{10};  // the server may have to be started first
constexpr const char* kDownload = "download";
constexpr std::int32_t kServersOwnDuration = -1;

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

}  // namespace

Notifier::Notifier(sd_bus* bus, std::function<void(const std::string&)> pressed)
    : _bus(bus), _pressed(std::move(pressed)) {
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_match_signal_async(bus, &slot, kService, kPath, kService, "ActionInvoked",
                                                 &Notifier::actionInvoked, nullptr, this);
    if (result < 0) throw std::runtime_error(std::strerror(-result));
    _signals.reset(slot);
}

void Notifier::show(Message message) {
    _message = std::move(message);
    call(newCall(_bus, kService, kPath, kService, "GetCapabilities"), &Notifier::capabilitiesKnown);
}

void Notifier::call(const BusMessagePointer& message, void (Notifier::*replied)(sd_bus_message*)) {
    _call = callAsync(_bus, message.get(), kPatience, [this, replied](sd_bus_message* reply) {
        const sd_bus_error* error = sd_bus_message_get_error(reply);
        if (error) return failed(error->message ? error->message : error->name);
        (this->*replied)(reply);
    });
    if (!_call) failed("nothing can be sent");
}

void Notifier::capabilitiesKnown(sd_bus_message* reply) {
    const char* sender = sd_bus_message_get_sender(reply);
    if (sender && _server != sender) {
        _server = sender;
        _id = 0;  // another server's number
    }
    bool markup = false;
    bool buttons = false;
    if (sd_bus_message_enter_container(reply, 'a', "s") >= 0) {
        const char* capability = nullptr;
        while (sd_bus_message_read(reply, "s", &capability) > 0) {
            markup = markup || std::string_view(capability) == "body-markup";
            buttons = buttons || std::string_view(capability) == "actions";
        }
    }
    send(markup, buttons);
}

void Notifier::send(bool markup, bool buttons) {
    std::string body = _message.body;
    if (!buttons && !_message.page.empty()) body += '\n' + _message.page;
    if (markup) body = escaped(body);

    const auto message = newCall(_bus, kService, kPath, kService, "Notify");
    sd_bus_message_append(message.get(), "susss", "Quorel", _id, "software-update-available", _message.title.c_str(),
                          body.c_str());
    if (buttons && !_message.page.empty()) {
        sd_bus_message_append(message.get(), "as", 2, kDownload, _message.button.c_str());
    } else {
        sd_bus_message_append(message.get(), "as", 0);
    }
    sd_bus_message_append(message.get(), "a{sv}i", 0, kServersOwnDuration);
    call(message, &Notifier::shown);
}

void Notifier::shown(sd_bus_message* reply) {
    if (sd_bus_message_read(reply, "u", &_id) < 0) failed("no answer that makes sense");
}

void Notifier::failed(const char* reason) const {
    MOLLog("%s. %s %s (Not shown: %s)", _message.title.c_str(), _message.body.c_str(), _message.page.c_str(), reason);
}

int Notifier::actionInvoked(sd_bus_message* message, void* self, sd_bus_error*) {
    const auto& notifier = *static_cast<Notifier*>(self);
    std::uint32_t id = 0;
    const char* action = nullptr;
    if (sd_bus_message_read(message, "us", &id, &action) < 0) return 0;
    const char* sender = sd_bus_message_get_sender(message);
    // Anybody can send such a signal to this program alone.
    const bool ours = id == notifier._id && sender && notifier._server == sender;
    if (ours && std::string_view(action) == kDownload && !notifier._message.page.empty())
        notifier._pressed(notifier._message.page);
    return 0;
}

}  // namespace quorel
