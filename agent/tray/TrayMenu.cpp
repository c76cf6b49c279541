#include "agent/tray/TrayMenu.h"

#include <string_view>
#include <system_error>
#include <utility>

namespace quorel {

namespace {

constexpr const char* kInterface = "com.canonical.dbusmenu";
constexpr std::int32_t kRoot = 0;

/// Panels take an underline for the mark of a key, and two of them for one.
std::string label(const std::string& text) {
    std::string result;
    for (const char c : text) result.append(c == '_' ? 2 : 1, c);
    return result;
}

/// Whether these properties, named by a caller, take in this one: no names are all.
bool takesIn(const std::vector<std::string>& names, std::string_view property) {
    if (names.empty()) return true;
    for (const auto& name : names)
        if (name == property) return true;
    return false;
}

int readTexts(sd_bus_message* message, std::vector<std::string>& texts) {
    int result = sd_bus_message_enter_container(message, 'a', "s");
    const char* text = nullptr;
    while (result >= 0 && (result = sd_bus_message_read(message, "s", &text)) > 0) texts.emplace_back(text);
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

int readNumbers(sd_bus_message* message, std::vector<std::int32_t>& numbers) {
    int result = sd_bus_message_enter_container(message, 'a', "i");
    std::int32_t number = 0;
    while (result >= 0 && (result = sd_bus_message_read(message, "i", &number)) > 0) numbers.push_back(number);
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

}  // namespace

/// The methods as panels call them: one item or many at once, each in a way of its own.
struct TrayMenuMethods {
    using Names = std::vector<std::string>;

    static TrayMenu& menu(void* self) { return *static_cast<TrayMenu*>(self); }

    static int appendProperties(sd_bus_message* to, const TrayMenu& menu, std::int32_t id, const Names& names) {
        int result = sd_bus_message_open_container(to, 'a', "{sv}");
        const MenuItem* item = menu.itemOf(id);
        if (id == kRoot && takesIn(names, "children-display"))
            result = sd_bus_message_append(to, "{sv}", "children-display", "s", "submenu");
        if (item && item->text.empty() && takesIn(names, "type"))
            result = sd_bus_message_append(to, "{sv}", "type", "s", "separator");
        if (item && !item->text.empty() && takesIn(names, "label"))
            result = sd_bus_message_append(to, "{sv}", "label", "s", label(item->text).c_str());
        if (item && takesIn(names, "enabled"))
            result = sd_bus_message_append(to, "{sv}", "enabled", "b", item->chosen ? 1 : 0);
        return result < 0 ? result : sd_bus_message_close_container(to);
    }

    /// An item with its own below it, down to `depth`; a negative depth is no end.
    static int appendLayout(sd_bus_message* to, const TrayMenu& menu, std::int32_t id, std::int32_t depth,
                            const Names& names) {
        int result = sd_bus_message_open_container(to, 'r', "ia{sv}av");
        if (result >= 0) result = sd_bus_message_append(to, "i", id);
        if (result >= 0) result = appendProperties(to, menu, id, names);
        if (result >= 0) result = sd_bus_message_open_container(to, 'a', "v");
        const std::size_t children = id == kRoot && depth != 0 ? menu._items.size() : 0;
        for (std::size_t i = 0; i < children && result >= 0; ++i) {
            result = sd_bus_message_open_container(to, 'v', "(ia{sv}av)");
            if (result >= 0) result = appendLayout(to, menu, menu._firstId + static_cast<std::int32_t>(i), 0, names);
            if (result >= 0) result = sd_bus_message_close_container(to);
        }
        if (result >= 0) result = sd_bus_message_close_container(to);
        return result < 0 ? result : sd_bus_message_close_container(to);
    }

    static int getLayout(sd_bus_message* call, void* self, sd_bus_error* error) {
        std::int32_t parent = 0;
        std::int32_t depth = 0;
        Names names;
        int result = sd_bus_message_read(call, "ii", &parent, &depth);
        if (result >= 0) result = readTexts(call, names);
        if (result < 0) return result;
        if (parent != kRoot && !menu(self).itemOf(parent))
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such item.");
        sd_bus_message* reply = nullptr;
        result = sd_bus_message_new_method_return(call, &reply);
        const BusMessagePointer owner(reply, sd_bus_message_unref);
        if (result >= 0) result = sd_bus_message_append(reply, "u", menu(self)._revision);
        if (result >= 0) result = appendLayout(reply, menu(self), parent, depth, names);
        return result < 0 ? result : sd_bus_send(nullptr, reply, nullptr);
    }

    static int getGroupProperties(sd_bus_message* call, void* self, sd_bus_error*) {
        std::vector<std::int32_t> ids;
        Names names;
        int result = readNumbers(call, ids);
        if (result >= 0) result = readTexts(call, names);
        if (result < 0) return result;
        if (ids.empty())
            for (std::size_t i = 0; i < menu(self)._items.size(); ++i)
                ids.push_back(menu(self)._firstId + static_cast<std::int32_t>(i));
        sd_bus_message* reply = nullptr;
        result = sd_bus_message_new_method_return(call, &reply);
        const BusMessagePointer owner(reply, sd_bus_message_unref);
        if (result >= 0) result = sd_bus_message_open_container(reply, 'a', "(ia{sv})");
        for (const auto id : ids) {
            if (id != kRoot && !menu(self).itemOf(id)) continue;
            if (result >= 0) result = sd_bus_message_open_container(reply, 'r', "ia{sv}");
            if (result >= 0) result = sd_bus_message_append(reply, "i", id);
            if (result >= 0) result = appendProperties(reply, menu(self), id, names);
            if (result >= 0) result = sd_bus_message_close_container(reply);
        }
        if (result >= 0) result = sd_bus_message_close_container(reply);
        return result < 0 ? result : sd_bus_send(nullptr, reply, nullptr);
    }

    static int getProperty(sd_bus_message* call, void* self, sd_bus_error* error) {
        std::int32_t id = 0;
        const char* name = nullptr;
        if (const int result = sd_bus_message_read(call, "is", &id, &name); result < 0) return result;
        const MenuItem* item = menu(self).itemOf(id);
        const std::string_view property = name;
        if (item && property == "label") return sd_bus_reply_method_return(call, "v", "s", label(item->text).c_str());
        if (item && property == "enabled") return sd_bus_reply_method_return(call, "v", "b", item->chosen ? 1 : 0);
        if (item && property == "type")
            return sd_bus_reply_method_return(call, "v", "s", item->text.empty() ? "separator" : "standard");
        if (id == kRoot && property == "children-display") return sd_bus_reply_method_return(call, "v", "s", "submenu");
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such property.");
    }

    // The answer goes first: what is chosen may take the menu away.
    static int event(sd_bus_message* call, void* self, sd_bus_error*) {
        std::int32_t id = 0;
        const char* what = nullptr;
        if (const int result = sd_bus_message_read(call, "is", &id, &what); result < 0) return result;
        const int result = sd_bus_reply_method_return(call, "");
        if (std::string_view(what) == "clicked") menu(self).choose(id);
        return result;
    }

    static int eventGroup(sd_bus_message* call, void* self, sd_bus_error*) {
        std::int32_t clicked = kRoot;
        int result = sd_bus_message_enter_container(call, 'a', "(isvu)");
        while (result >= 0 && (result = sd_bus_message_enter_container(call, 'r', "isvu")) > 0) {
            std::int32_t id = 0;
            const char* what = nullptr;
            result = sd_bus_message_read(call, "is", &id, &what);
            if (result >= 0) result = sd_bus_message_skip(call, "vu");
            if (result >= 0) result = sd_bus_message_exit_container(call);
            if (result >= 0 && std::string_view(what) == "clicked") clicked = id;
        }
        if (result < 0) return result;
        result = sd_bus_reply_method_return(call, "ai", 0);
        if (clicked != kRoot) menu(self).choose(clicked);
        return result;
    }

    static int aboutToShow(sd_bus_message* call, void*, sd_bus_error*) {
        return sd_bus_reply_method_return(call, "b", 0);  // it is up to date always
    }
    static int aboutToShowGroup(sd_bus_message* call, void*, sd_bus_error*) {
        return sd_bus_reply_method_return(call, "aiai", 0, 0);
    }

    static int constant(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply, void*,
                        sd_bus_error*) {
        if (std::string_view(property) == "Version") return sd_bus_message_append(reply, "u", 3);
        if (std::string_view(property) == "IconThemePath") return sd_bus_message_append(reply, "as", 0);
        return sd_bus_message_append(reply, "s", std::string_view(property) == "Status" ? "normal" : "ltr");
    }

    static constexpr sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("Version", "u", constant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("TextDirection", "s", constant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("Status", "s", constant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_PROPERTY("IconThemePath", "as", constant, 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", getGroupProperties, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("GetProperty", "is", "v", getProperty, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Event", "isvu", "", event, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", eventGroup, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("AboutToShow", "i", "b", aboutToShow, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", aboutToShowGroup, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
        SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
        SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
        SD_BUS_VTABLE_END,
    };
};

TrayMenu::TrayMenu(sd_bus* bus) : _bus(bus) {
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_object_vtable(bus, &slot, kPath, kInterface, TrayMenuMethods::kTable, this);
    if (result < 0) throw std::system_error(-result, std::generic_category(), "The tray's menu");
    _slot.reset(slot);
}

void TrayMenu::setItems(std::vector<MenuItem> items) {
    _firstId += static_cast<std::int32_t>(_items.size());
    _items = std::move(items);
    sd_bus_emit_signal(_bus, kPath, kInterface, "LayoutUpdated", "ui", ++_revision, kRoot);
}

const MenuItem* TrayMenu::itemOf(std::int32_t id) const {
    const auto index = static_cast<std::size_t>(id - _firstId);
    return id >= _firstId && index < _items.size() ? &_items[index] : nullptr;
}

void TrayMenu::choose(std::int32_t id) const {
    const MenuItem* item = itemOf(id);
    if (!item || !item->chosen) return;
    const auto chosen = item->chosen;  // which may set other items
    chosen();
}

}  // namespace quorel
