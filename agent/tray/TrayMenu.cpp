#include "agent/tray/TrayMenu.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "model/PlainText.h"

namespace quorel {

namespace {

constexpr const char* kInterface = "com.canonical.dbusmenu";
constexpr std::int32_t kRoot = 0;

/// Panels take an underline for the mark of a key, and two of them for one.
std::string label(const std::string& text) {
    std::string result;
    for (const char c : plainLine(text)) result.append(c == '_' ? 2 : 1, c);
    return result;
}

/// Properties that a caller wants; no names are all.
using Names = std::vector<std::string>;

bool takesIn(const Names& names, std::string_view property) {
    return names.empty() || std::ranges::find(names, property) != names.end();
}

int readTexts(sd_bus_message* message, Names& texts) {
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

/// Fills the answer and sends it.
template <class Fill>
int answer(sd_bus_message* call, Fill fill) {
    sd_bus_message* reply = nullptr;
    int result = sd_bus_message_new_method_return(call, &reply);
    const BusMessagePointer owner(reply);
    if (result >= 0) result = fill(reply);
    return result < 0 ? result : sd_bus_send(nullptr, reply, nullptr);
}

}  // namespace

/// The methods as panels call them: one item or many at once, each in a way of its own.
struct TrayMenuMethods {
    static TrayMenu& menu(void* self) { return *static_cast<TrayMenu*>(self); }
    static std::int32_t idAt(const TrayMenu& menu, std::size_t index) {
        return menu._firstId + static_cast<std::int32_t>(index);
    }
    static bool knows(const TrayMenu& menu, std::int32_t id) { return id == kRoot || menu.itemOf(id); }

    static int appendProperties(sd_bus_message* to, const TrayMenu& menu, std::int32_t id, const Names& names) {
        int result = sd_bus_message_open_container(to, 'a', "{sv}");
        const auto append = [&](const char* name, const char* type, auto value) {
            if (result >= 0 && takesIn(names, name)) result = sd_bus_message_append(to, "{sv}", name, type, value);
        };
        if (const MenuItem* item = menu.itemOf(id); !item) {
            append("children-display", "s", "submenu");
        } else if (item->text.empty()) {
            append("type", "s", "separator");
        } else {
            append("label", "s", label(item->text).c_str());
            append("enabled", "b", static_cast<int>(item->choice != 0));
        }
        return result < 0 ? result : sd_bus_message_close_container(to);
    }

    /// An item with its own below it, unless the depth is 0; a negative one is no end.
    static int appendLayout(sd_bus_message* to, const TrayMenu& menu, std::int32_t id, std::int32_t depth,
                            const Names& names) {
        int result = sd_bus_message_open_container(to, 'r', "ia{sv}av");
        if (result >= 0) result = sd_bus_message_append(to, "i", id);
        if (result >= 0) result = appendProperties(to, menu, id, names);
        if (result >= 0) result = sd_bus_message_open_container(to, 'a', "v");
        const std::size_t children = id == kRoot && depth != 0 ? menu._items.size() : 0;
        for (std::size_t i = 0; i < children && result >= 0; ++i) {
            result = sd_bus_message_open_container(to, 'v', "(ia{sv}av)");
            if (result >= 0) result = appendLayout(to, menu, idAt(menu, i), 0, names);
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
        if (!knows(menu(self), parent))
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such item.");
        return answer(call, [&](sd_bus_message* reply) {
            result = sd_bus_message_append(reply, "u", menu(self)._revision);
            return result < 0 ? result : appendLayout(reply, menu(self), parent, depth, names);
        });
    }

    static int getGroupProperties(sd_bus_message* call, void* self, sd_bus_error*) {
        std::vector<std::int32_t> ids;
        Names names;
        int result = readNumbers(call, ids);
        if (result >= 0) result = readTexts(call, names);
        if (result < 0) return result;
        if (ids.empty())
            for (std::size_t i = 0; i < menu(self)._items.size(); ++i) ids.push_back(idAt(menu(self), i));
        return answer(call, [&](sd_bus_message* reply) {
            result = sd_bus_message_open_container(reply, 'a', "(ia{sv})");
            for (const auto id : ids) {
                if (!knows(menu(self), id)) continue;
                if (result >= 0) result = sd_bus_message_open_container(reply, 'r', "ia{sv}");
                if (result >= 0) result = sd_bus_message_append(reply, "i", id);
                if (result >= 0) result = appendProperties(reply, menu(self), id, names);
                if (result >= 0) result = sd_bus_message_close_container(reply);
            }
            return result < 0 ? result : sd_bus_message_close_container(reply);
        });
    }

    static int getProperty(sd_bus_message* call, void* self, sd_bus_error* error) {
        std::int32_t id = 0;
        const char* name = nullptr;
        if (const int result = sd_bus_message_read(call, "is", &id, &name); result < 0) return result;
        const MenuItem* item = menu(self).itemOf(id);
        const std::string_view property = name;
        if (item && property == "label") return sd_bus_reply_method_return(call, "v", "s", label(item->text).c_str());
        if (item && property == "enabled") return sd_bus_reply_method_return(call, "v", "b", item->choice != 0 ? 1 : 0);
        if (item && property == "type")
            return sd_bus_reply_method_return(call, "v", "s", item->text.empty() ? "separator" : "standard");
        if (id == kRoot && property == "children-display") return sd_bus_reply_method_return(call, "v", "s", "submenu");
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such property.");
    }

    static int event(sd_bus_message* call, void* self, sd_bus_error*) {
        std::int32_t id = 0;
        const char* what = nullptr;
        if (const int result = sd_bus_message_read(call, "is", &id, &what); result < 0) return result;
        if (std::string_view(what) == "clicked") menu(self).choose(id);
        return sd_bus_reply_method_return(call, "");
    }

    static int eventGroup(sd_bus_message* call, void* self, sd_bus_error*) {
        int result = sd_bus_message_enter_container(call, 'a', "(isvu)");
        while (result >= 0 && (result = sd_bus_message_enter_container(call, 'r', "isvu")) > 0) {
            std::int32_t id = 0;
            const char* what = nullptr;
            result = sd_bus_message_read(call, "is", &id, &what);
            if (result >= 0 && std::string_view(what) == "clicked") menu(self).choose(id);
            if (result >= 0) result = sd_bus_message_skip(call, "vu");
            if (result >= 0) result = sd_bus_message_exit_container(call);
        }
        return result < 0 ? result : sd_bus_reply_method_return(call, "ai", 0);
    }

    // Some panels show an old menu unless they are told to ask for it again.
    static int aboutToShow(sd_bus_message* call, void*, sd_bus_error*) {
        return sd_bus_reply_method_return(call, "b", 1);
    }
    static int aboutToShowGroup(sd_bus_message* call, void*, sd_bus_error*) {
        return sd_bus_reply_method_return(call, "aiai", 1, kRoot, 0);
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

TrayMenu::TrayMenu(sd_bus* bus, std::function<void(int)> chosen) : _bus(bus), _chosen(std::move(chosen)) {
    _slot = addObject(bus, kPath, kInterface, TrayMenuMethods::kTable, this);
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
    if (item && item->choice != 0) _chosen(item->choice);
}

}  // namespace quorel
