#include "agent/tray/TrayItem.h"

#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>

#include "TrayIconDots.h"
#include "model/PlainText.h"

namespace quorel {

namespace {

constexpr const char* kPath = "/StatusNotifierItem";
constexpr const char* kInterface = "org.kde.StatusNotifierItem";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr std::chrono::seconds kPatience{10};
// Some panels own their name a moment before they answer.
constexpr int kAttempts = 5;
constexpr std::chrono::seconds kBetweenAttempts{1};

int appendPictures(sd_bus_message* reply, bool hasOne) {
    int result = sd_bus_message_open_container(reply, 'a', "(iiay)");
    if (hasOne) {
        if (result >= 0) result = sd_bus_message_open_container(reply, 'r', "iiay");
        if (result >= 0) result = sd_bus_message_append(reply, "ii", kIconWidth, kIconHeight);
        if (result >= 0) result = sd_bus_message_append_array(reply, 'y', kIconDots, sizeof kIconDots);
        if (result >= 0) result = sd_bus_message_close_container(reply);
    }
    return result < 0 ? result : sd_bus_message_close_container(reply);
}

void check(int result) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), "no item in the panel");
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
        return sd_bus_message_append(reply, "s", value);
    }
    static int pictures(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void*,
                        sd_bus_error*) {
        return appendPictures(reply, std::string_view(property) == "IconPixmap");
    }
    static int tip(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* self, sd_bus_error*) {
        int result = sd_bus_message_open_container(reply, 'r', "sa(iiay)ss");
        if (result >= 0) result = sd_bus_message_append(reply, "s", "");
        if (result >= 0) result = appendPictures(reply, false);
        if (result >= 0) result = sd_bus_message_append(reply, "ss", item(self)._title.c_str(), "");
        return result < 0 ? result : sd_bus_message_close_container(reply);
    }
    static int window(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
        return sd_bus_message_append(reply, "i", 0);
    }
    static int isMenu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* self,
                      sd_bus_error*) {
        return sd_bus_message_append(reply, "b", item(self)._activated ? 0 : 1);
    }
    static int menu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
        return sd_bus_message_append(reply, "o", TrayMenu::kPath);
    }

    static int activate(sd_bus_message* call, void* self, sd_bus_error*) {
        if (item(self)._activated) item(self)._activated();
        return sd_bus_reply_method_return(call, "");
    }
    static int nothing(sd_bus_message* call, void*, sd_bus_error*) { return sd_bus_reply_method_return(call, ""); }

    static constexpr sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("Category", "s", text, 0, 0),
        SD_BUS_PROPERTY("Id", "s", text, 0, 0),
        SD_BUS_PROPERTY("Title", "s", text, 0, 0),
        SD_BUS_PROPERTY("Status", "s", text, 0, 0),
        SD_BUS_PROPERTY("IconName", "s", text, 0, 0),  // some panels that do not find it look for no picture
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

TrayItem::TrayItem(EventLoop& loop, std::function<void()> activated, std::function<void(int)> chosen)
    : _bus(beginConnection(Bus::Session)),
      _activated(std::move(activated)),
      _menu(_bus.get(), std::move(chosen)),
      _again(loop, [this] { registerAtPanel(); }) {
    _object = addObject(_bus.get(), kPath, kInterface, TrayItemMethods::kTable, this);
    check(sd_bus_attach_event(_bus.get(), loop.get(), SD_EVENT_PRIORITY_NORMAL));
    _watch = watchOwner(_bus.get(), kWatcher, [this](const std::string& owner) {
        if (!owner.empty()) panelCame();
    });
    panelCame();
}

void TrayItem::panelCame() {
    _again.stop();  // who is told of an item twice makes it anew, under the hand of who uses it
    _attempts = kAttempts;
    registerAtPanel();
}

void TrayItem::registerAtPanel() {
    const auto call = newCall(_bus.get(), kWatcher, "/StatusNotifierWatcher", kWatcher, "RegisterStatusNotifierItem");
    // Given a path alone, panels take the caller for the owner.
    sd_bus_message_append(call.get(), "s", kPath);
    sd_bus_message_set_auto_start(call.get(), 0);
    _registration = callAsync(_bus.get(), call.get(), kPatience, [this](sd_bus_message* reply) {
        // Where no panel takes it, there is nothing to be done.
        if (errorOf(reply) && --_attempts > 0) _again.start(kBetweenAttempts);
    });
}

void TrayItem::setTitle(const std::string& title) {
    _title = withoutMarkup(plainLine(title));
    for (const char* signal : {"NewTitle", "NewToolTip"}) sd_bus_emit_signal(_bus.get(), kPath, kInterface, signal, "");
}

}  // namespace quorel
