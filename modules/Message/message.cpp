// Shows the message of a Schedule as a notification of the desktop in which it is started.

#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "linux/SettingsEntry.h"
#include "model/ActionParameters.h"
#include "model/PlainText.h"
#include "modules/Program.h"

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr std::uint64_t kPatience = 20'000'000;  // microseconds; the server may have to be started first
constexpr std::int32_t kUntilItIsSeen = 0;

void check(int result, const sd_bus_error* error = nullptr) {
    if (result >= 0) return;
    const char* reason = error && error->message ? error->message : std::strerror(-result);
    throw std::runtime_error(std::string("nobody shows notifications: ") + reason);
}

/// What libsystemd has handed out, given back at the end.
struct Conversation {
    sd_bus* bus = nullptr;
    sd_bus_message* reply = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    ~Conversation() {
        sd_bus_error_free(&error);
        sd_bus_message_unref(reply);
        sd_bus_flush_close_unref(bus);
    }
};

void show(const std::string& title, const std::string& text) {
    Conversation conversation;
    auto& [bus, reply, error] = conversation;
    check(sd_bus_open_user(&bus));
    check(sd_bus_set_method_call_timeout(bus, kPatience));

    check(sd_bus_call_method(bus, kService, kPath, kService, "GetCapabilities", &error, &reply, ""), &error);
    bool markup = false;
    check(sd_bus_message_enter_container(reply, 'a', "s"));
    const char* capability = nullptr;
    while (sd_bus_message_read(reply, "s", &capability) > 0)
        markup = markup || std::string_view(capability) == "body-markup";

    const auto settings = quorel::settingsEntry();
    const std::string entry = settings ? settings->name : "quorel";
    const std::string body = markup ? quorel::escapedMarkup(text) : text;
    check(sd_bus_call_method(bus, kService, kPath, kService, "Notify", &error, nullptr, "susssasa{sv}i", "Quorel",
                             std::uint32_t{0}, "", title.c_str(), body.c_str(), 0, 1, "desktop-entry", "s",
                             entry.c_str(), kUntilItIsSeen),
          &error);
}

}  // namespace

int main() {
    const quorel::Value own = quorel::actionParameters();
    const std::string& title = own[quorel::parameters::kTitle].text();
    const std::string& text = own[quorel::parameters::kText].text();
    if (title.empty() && text.empty()) return quorel::failed("there is nothing to say");
    try {
        show(title.empty() ? "Quorel" : title, text);
        return 0;
    } catch (const std::exception& error) {
        return quorel::failed(error.what());
    }
}
