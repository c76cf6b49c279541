#include "agent/tray/TrayItem.h"

#include <unistd.h>

#include <string_view>
#include <system_error>

namespace quorel {

namespace {

constexpr const char* kPath = "/StatusNotifierItem";
constexpr const char* kInterface = "org.kde.StatusNotifierItem";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kIconName = "quorel";

int appendPictures(sd_bus_message* reply, const TrayIcon* icon) {
    int result = sd_bus_message_open_container(reply, 'a', "(iiay)");
    if (icon && !icon->dots.empty()) {
        if (result >= 0) result = sd_bus_message_open_container(reply, 'r', "iiay");
        if (result >= 0) result = sd_bus_message_append(reply, "ii", icon->width, icon->height);
        if (result >= 0) result = sd_bus_message_append_array(reply, 'y', icon->dots.data(), icon->dots.size());
        if (result >= 0) result = sd_bus_message_close_container(reply);
    }
    return result < 0 ? result : sd_bus_message_close_container(reply);
}

/// Panels read the text of a tip as markup.
std::string markup(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else
            result += c;
    }
    return result;
}

void check(int result) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), "The tray's item");
}

}  // namespace

struct TrayItemMethods {
    static TrayItem& item(void* self) { return *static_cast<TrayItem*>(self); }

    static int text(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void* self,
                    sd_bus_error*) {
        const std::string_view name = property;
        const char* value = "";
        if (name == "Category") value = "SystemServices";
        if (name == "Id") value = "quorel";
        if (name == "Title") value = item(self)._title.c_str();
        if (name == "Status") value = "Active";
        if (name == "IconName") value = kIconName;
        return sd_bus_message_append(reply, "s", value);
    }
    static int pictures(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void* self,
                        sd_bus_error*) {
        return appendPictures(reply, std::string_view(property) == "IconPixmap" ? &item(self)._icon : nullptr);
    }
    static int tip(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* self, sd_bus_error*) {
        int result = sd_bus_message_open_container(reply, 'r', "sa(iiay)ss");
        if (result >= 0) result = sd_bus_message_append(reply, "s", kIconName);
        if (result >= 0) result = appendPictures(reply, nullptr);
        if (result >= 0)
            result = sd_bus_message_append(reply, "ss", item(self)._title.c_str(), markup(item(self)._tip).c_str());
        return result < 0 ? result : sd_bus_message_close_container(reply);
    }
    static int window(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
        return sd_bus_message_append(reply, "i", 0);
    }
    static int isMenu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
        return sd_bus_message_append(reply, "b", 0);
    }
    static int menu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
        return sd_bus_message_append(reply, "o", TrayMenu::kPath);
    }

    static int activate(sd_bus_message* call, void* self, sd_bus_error*) {
        const int result = sd_bus_reply_method_return(call, "");
        item(self)._activated();
        return result;
    }
    static int nothing(sd_bus_message* call, void*, sd_bus_error*) { return sd_bus_reply_method_return(call, ""); }

    static int watcherCame(sd_bus_message* signal, void* self, sd_bus_error*) {
        const char* owner = nullptr;
        if (sd_bus_message_read(signal, "sss", nullptr, nullptr, &owner) >= 0 && owner && *owner)
            item(self).registerAtPanel();
        return 0;
    }

    static constexpr sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("Category", "s", text, 0, 0),
        SD_BUS_PROPERTY("Id", "s", text, 0, 0),
        SD_BUS_PROPERTY("Title", "s", text, 0, 0),
        SD_BUS_PROPERTY("Status", "s", text, 0, 0),
        SD_BUS_PROPERTY("IconName", "s", text, 0, 0),
        SD_BUS_PROPERTY("OverlayIconName", "s", text, 0, 0),
        SD_BUS_PROPERTY("AttentionIconName", "s", text, 0, 0),
        SD_BUS_PROPERTY("AttentionMovieName", "s", text, 0, 0),
        SD_BUS_PROPERTY("IconThemePath", "s", text, 0, 0),
        SD_BUS_PROPERTY("IconPixmap", "a(iiay)", pictures, 0, 0),
        SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", pictures, 0, 0),
        SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", pictures, 0, 0),
        SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", tip, 0, 0),
        SD_BUS_PROPERTY("WindowId", "i", window, 0, 0),
        SD_BUS_PROPERTY("ItemIsMenu", "b", isMenu, 0, 0),
        SD_BUS_PROPERTY("Menu", "o", menu, 0, 0),
        SD_BUS_METHOD("Activate", "ii", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("SecondaryActivate", "ii", "", nothing, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ContextMenu", "ii", "", nothing, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Scroll", "is", "", nothing, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("NewTitle", "", 0),
        SD_BUS_SIGNAL("NewToolTip", "", 0),
        SD_BUS_SIGNAL("NewIcon", "", 0),
        SD_BUS_SIGNAL("NewStatus", "s", 0),
        SD_BUS_VTABLE_END,
    };
};

TrayItem::TrayItem(sd_event* loop, std::function<void()> activated)
    : _bus(beginConnection(Bus::Session)), _activated(std::move(activated)), _menu(_bus.get()) {
    sd_bus_slot* slot = nullptr;
    check(sd_bus_add_object_vtable(_bus.get(), &slot, kPath, kInterface, TrayItemMethods::kTable, this));
    _slot.reset(slot);
    check(sd_bus_attach_event(_bus.get(), loop, SD_EVENT_PRIORITY_NORMAL));
    // Panels expect this form of name.
    const std::string name = kInterface + ("-" + std::to_string(getpid())) + "-1";
    check(sd_bus_request_name_async(_bus.get(), nullptr, name.c_str(), 0, nullptr, nullptr));
    const std::string match =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0="
        "'" +
        std::string(kWatcher) + "'";
    check(sd_bus_add_match_async(_bus.get(), nullptr, match.c_str(), &TrayItemMethods::watcherCame, nullptr, this));
    registerAtPanel();
}

void TrayItem::registerAtPanel() {
    const std::string name = kInterface + ("-" + std::to_string(getpid())) + "-1";
    sd_bus_message* call = nullptr;
    int result = sd_bus_message_new_method_call(_bus.get(), &call, kWatcher, "/StatusNotifierWatcher", kWatcher,
                                                "RegisterStatusNotifierItem");
    const BusMessagePointer owner(call, sd_bus_message_unref);
    if (result >= 0) result = sd_bus_message_append(call, "s", name.c_str());
    if (result >= 0) result = sd_bus_message_set_auto_start(call, 0);
    // Where no panel takes it, there is nothing to be done.
    if (result >= 0) sd_bus_send(_bus.get(), call, nullptr);
}

void TrayItem::setTip(const std::string& title, const std::string& text) {
    _title = title;
    _tip = text;
    for (const char* signal : {"NewTitle", "NewToolTip"}) sd_bus_emit_signal(_bus.get(), kPath, kInterface, signal, "");
}

}  // namespace quorel
