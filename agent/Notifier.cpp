#include "agent/Notifier.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr std::uint64_t kPatienceMicroseconds = 10'000'000;  // the server may have to be started first
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

BusMessagePointer callToServer(sd_bus* bus, const char* method) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_method_call(bus, &message, kService, kPath, kService, method);
    return {message, sd_bus_message_unref};
}

}  // namespace

std::string Notifier::attach(sd_event* loop) {
    _bus = beginConnection(Bus::Session);
    if (!_bus) return "there is no bus";
    int result = sd_bus_attach_event(_bus.get(), loop, SD_EVENT_PRIORITY_NORMAL);
    if (result >= 0)
        result = sd_bus_match_signal_async(_bus.get(), nullptr, kService, kPath, kService, "ActionInvoked",
                                           &Notifier::actionInvoked, nullptr, this);
    return result < 0 ? std::strerror(-result) : std::string();
}

void Notifier::show(Message message) {
    _message = std::move(message);
    const auto call = callToServer(_bus.get(), "GetCapabilities");
    sd_bus_slot* slot = nullptr;
    const int result =
        sd_bus_call_async(_bus.get(), &slot, call.get(), &Notifier::capabilitiesKnown, this, kPatienceMicroseconds);
    _call.reset(slot);
    if (result < 0) failed(std::strerror(-result));
}

int Notifier::capabilitiesKnown(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& notifier = *static_cast<Notifier*>(self);
    if (const sd_bus_error* error = sd_bus_message_get_error(message)) {
        notifier.failed(error->message ? error->message : error->name);
        return 1;
    }
    const char* sender = sd_bus_message_get_sender(message);
    if (sender && notifier._server != sender) {
        notifier._server = sender;
        notifier._id = 0;  // another server's number
    }
    bool markup = false;
    bool buttons = false;
    if (sd_bus_message_enter_container(message, 'a', "s") >= 0) {
        const char* capability = nullptr;
        while (sd_bus_message_read(message, "s", &capability) > 0) {
            markup = markup || std::string_view(capability) == "body-markup";
            buttons = buttons || std::string_view(capability) == "actions";
        }
    }
    notifier.send(markup, buttons);
    return 1;
}

void Notifier::send(bool markup, bool buttons) {
    std::string body = _message.body;
    if (!buttons && !_message.page.empty()) body += '\n' + _message.page;
    if (markup) body = escaped(body);

    const auto call = callToServer(_bus.get(), "Notify");
    int result = sd_bus_message_append(call.get(), "susss", "Quorel", _id, "software-update-available",
                                       _message.title.c_str(), body.c_str());
    if (result >= 0)
        result = buttons && !_message.page.empty()
                     ? sd_bus_message_append(call.get(), "as", 2, kDownload, _message.button.c_str())
                     : sd_bus_message_append(call.get(), "as", 0);
    if (result >= 0) result = sd_bus_message_append(call.get(), "a{sv}i", 0, kServersOwnDuration);
    sd_bus_slot* slot = nullptr;
    if (result >= 0)
        result = sd_bus_call_async(_bus.get(), &slot, call.get(), &Notifier::shown, this, kPatienceMicroseconds);
    _call.reset(slot);
    if (result < 0) failed(std::strerror(-result));
}

int Notifier::shown(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& notifier = *static_cast<Notifier*>(self);
    const sd_bus_error* error = sd_bus_message_get_error(message);
    if (error || sd_bus_message_read(message, "u", &notifier._id) < 0)
        notifier.failed(error && error->message ? error->message : "no answer that makes sense");
    return 1;
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
