#include "agent/warning/Notifier.h"

#include <stdexcept>
#include <string_view>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/SettingsEntry.h"
#include "model/PlainText.h"
#include "words/Language.h"

namespace quorel {

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kOpen = "default";       // by the desktops' rules, what a click on the message means
constexpr std::chrono::seconds kPatience{10};  // the server may have to be started first
constexpr std::int32_t kServersOwnDuration = -1;
constexpr std::int32_t kWithoutEnd = 0;
constexpr std::uint8_t kNormal = 1;
constexpr std::uint8_t kCritical = 2;
constexpr std::uint32_t kClosedByUser = 2;

BusSlot watch(sd_bus* bus, const char* member, std::function<void(sd_bus_message*)> heard) {
    return watchSignals(bus, kService, std::string("path='") + kPath + "',member='" + member + "'", std::move(heard));
}

}  // namespace

Notifier::Notifier(sd_bus* bus, std::function<void(const std::string&)> pressed)
    : _bus(bus),
      _pressed(std::move(pressed)),
      _invocations(watch(bus, "ActionInvoked", [this](sd_bus_message* signal) { invoked(signal); })),
      _closings(watch(bus, "NotificationClosed", [this](sd_bus_message* signal) { closed(signal); })) {
    if (!_invocations || !_closings) throw std::runtime_error("notifications cannot be watched");
}

void Notifier::show(Message message) {
    _message = std::move(message);
    _isDone = false;
    begin();
}

void Notifier::withdraw() {
    _message.reset();
    begin();
}

/// One call at a time: while the number of what is being shown is not known, it could neither be replaced nor closed.
void Notifier::begin() {
    _again = _call != nullptr;
    if (_again) return;
    if (_message) {
        call(newCall(_bus, kService, kPath, kService, "GetCapabilities"), &Notifier::capabilitiesKnown);
    } else if (_id != 0) {
        const auto message = newCall(_bus, _server.c_str(), kPath, kService, "CloseNotification");
        sd_bus_message_append(message.get(), "u", std::exchange(_id, 0));
        call(message, &Notifier::withdrawn);
    }
}

void Notifier::call(const BusMessagePointer& message, void (Notifier::*replied)(sd_bus_message*)) {
    _call = callAsync(_bus, message.get(), kPatience, [this, replied](sd_bus_message* reply) {
        const BusSlot ended = std::move(_call);
        if (const BusError error = errorOf(reply))
            failed(error.message);
        else
            (this->*replied)(reply);
        if (!_call && std::exchange(_again, false)) begin();
    });
    if (!_call) failed("nothing can be sent");
}

void Notifier::capabilitiesKnown(sd_bus_message* reply) {
    const char* sender = sd_bus_message_get_sender(reply);
    if (sender && _server != sender) {
        _server = sender;
        _id = 0;  // another server's number
    }
    if (!_message) return;
    bool markup = false;
    bool buttons = false;
    if (sd_bus_message_enter_container(reply, 'a', "s") >= 0) {
        const char* capability = nullptr;
        while (sd_bus_message_read(reply, "s", &capability) > 0) {
            markup = markup || std::string_view(capability) == "body-markup";
            buttons = buttons || std::string_view(capability) == "actions";
        }
    }
    std::string body = _message->body;
    if (!buttons && !_message->withoutButtons.empty()) body += '\n' + _message->withoutButtons;
    body = plainLines(body);
    if (markup) body = escapedMarkup(body);

    const auto message = newCall(_bus, kService, kPath, kService, "Notify");
    sd_bus_message_append(message.get(), "susss", "Quorel", _id, _message->icon.c_str(),
                          plainLine(filled(translated("Quorel: {1}"), {_message->title})).c_str(), body.c_str());
    const auto settings = settingsEntry();
    sd_bus_message_open_container(message.get(), 'a', "s");
    if (buttons && settings) sd_bus_message_append(message.get(), "ss", kOpen, translated("Open Settings"));
    for (const Message::Button& button : _message->buttons)
        if (buttons) sd_bus_message_append(message.get(), "ss", button.key.c_str(), button.label.c_str());
    sd_bus_message_close_container(message.get());
    // The visible program: desktops list nothing else in their settings.
    const std::string entry = settings ? settings->name : "quorel";
    sd_bus_message_append(message.get(), "a{sv}i", 2, "desktop-entry", "s", entry.c_str(), "urgency", "y",
                          _message->isUrgent ? kCritical : kNormal,
                          _message->isUrgent ? kWithoutEnd : kServersOwnDuration);
    call(message, &Notifier::shown);
}

void Notifier::shown(sd_bus_message* reply) {
    _logged.clear();
    if (sd_bus_message_read(reply, "u", &_id) < 0) failed("no answer that makes sense");
}

void Notifier::withdrawn(sd_bus_message*) {}

void Notifier::failed(const std::string& reason) {
    if (!_message || std::exchange(_logged, _message->title) == _message->title) return;
    MOLLog("%s. %s %s (Not shown: %s)", _message->title.c_str(), _message->body.c_str(),
           _message->withoutButtons.c_str(), reason.c_str());
}

/// Anybody can send such a signal to this program alone.
bool Notifier::isAboutOurs(sd_bus_message* signal) {
    std::uint32_t id = 0;
    const char* sender = sd_bus_message_get_sender(signal);
    return sd_bus_message_read(signal, "u", &id) > 0 && id != 0 && id == _id && sender && _server == sender;
}

void Notifier::invoked(sd_bus_message* signal) {
    const char* key = nullptr;
    if (!isAboutOurs(signal) || sd_bus_message_read(signal, "s", &key) <= 0 || !_message) return;
    const std::string pressed = key;
    _isDone = true;
    if (pressed == kOpen) openSettings();
    for (const Message::Button& button : _message->buttons)
        if (button.key == pressed) return _pressed(pressed);
}

void Notifier::closed(sd_bus_message* signal) {
    std::uint32_t reason = 0;
    if (!isAboutOurs(signal) || sd_bus_message_read(signal, "u", &reason) <= 0) return;
    _id = 0;
    _isDone = _isDone || reason == kClosedByUser;
}

}  // namespace quorel
