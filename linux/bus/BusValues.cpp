#include "linux/bus/BusValues.h"

#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "linux/bus/Bus.h"
#include "model/Dictionary.h"
#include "model/PlainText.h"

namespace quorel {

namespace {

constexpr int kDeepest = 8;

const char* typeOf(const Value& value) {
    if (value.isBoolean()) return "b";
    if (value.isInteger()) return "x";
    if (value.isReal()) return "d";
    if (value.isText()) return "s";
    if (value.isArray()) return "av";
    return value.isDictionary() ? "a{sv}" : nullptr;
}

int writeVariant(sd_bus_message* message, const Value& value);

int writeContent(sd_bus_message* message, const Value& value) {
    if (value.isBoolean()) return sd_bus_message_append(message, "b", value.intValue());
    if (value.isInteger()) return sd_bus_message_append(message, "x", value.integer());
    if (value.isReal()) return sd_bus_message_append(message, "d", value.real());
    if (value.isText()) return sd_bus_message_append(message, "s", plainLines(value.text()).c_str());
    if (value.isDictionary()) return writeDictionary(message, value.dictionary());
    int result = sd_bus_message_open_container(message, 'a', "v");
    for (const Value& element : value.array()) {
        if (result >= 0) result = writeVariant(message, element);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int writeVariant(sd_bus_message* message, const Value& value) {
    const char* type = typeOf(value);
    if (!type) return -EINVAL;
    int result = sd_bus_message_open_container(message, 'v', type);
    if (result >= 0) result = writeContent(message, value);
    return result < 0 ? result : sd_bus_message_close_container(message);
}

std::optional<Value> read(sd_bus_message* message, int depth);

/// Enters what comes next, and leaves it after `content`, which answers whether it could be read.
template <class Content>
bool within(sd_bus_message* message, char type, const char* contents, Content content) {
    return sd_bus_message_enter_container(message, type, contents) > 0 && content() &&
           sd_bus_message_exit_container(message) >= 0;
}

std::optional<Value> readDictionary(sd_bus_message* message, int depth) {
    Dictionary dictionary;
    const auto entry = [&] {
        const char* key = nullptr;
        std::optional<Value> value;
        if (sd_bus_message_read(message, "s", &key) <= 0 || !(value = read(message, depth))) return false;
        dictionary.set(key, std::move(*value));
        return true;
    };
    const bool done = within(message, 'a', "{sv}", [&] {
        while (sd_bus_message_at_end(message, false) == 0) {
            if (!within(message, 'e', "sv", entry)) return false;
        }
        return true;
    });
    return done ? std::optional<Value>(std::move(dictionary)) : std::nullopt;
}

std::optional<Value> readArray(sd_bus_message* message, const char* contents, int depth) {
    Array array;
    const std::string type = contents;  // sd-bus keeps it only until the next step
    const bool done = within(message, 'a', type.c_str(), [&] {
        while (sd_bus_message_at_end(message, false) == 0) {
            std::optional<Value> element = read(message, depth);
            if (!element) return false;
            array.push_back(std::move(*element));
        }
        return true;
    });
    return done ? std::optional<Value>(std::move(array)) : std::nullopt;
}

template <class Content>
std::optional<Value> readBasic(sd_bus_message* message, char type) {
    Content content{};
    if (sd_bus_message_read_basic(message, type, &content) <= 0) return {};
    return Value(content);
}

std::optional<Value> read(sd_bus_message* message, int depth) {
    char type = 0;
    const char* contents = nullptr;
    if (depth > kDeepest || sd_bus_message_peek_type(message, &type, &contents) <= 0) return {};
    switch (type) {
        case 'b': {
            int flag = 0;
            if (sd_bus_message_read_basic(message, type, &flag) <= 0) return {};
            return Value(flag != 0);
        }
        case 'x':
            return readBasic<std::int64_t>(message, type);
        case 'd':
            return readBasic<double>(message, type);
        case 's':
            return readBasic<const char*>(message, type);
        case 'v': {
            std::optional<Value> value;
            const std::string inner = contents;
            const bool done =
                within(message, type, inner.c_str(), [&] { return (value = read(message, depth + 1)).has_value(); });
            return done ? value : std::nullopt;
        }
        case 'a':
            return contents == std::string_view("{sv}") ? readDictionary(message, depth + 1)
                                                        : readArray(message, contents, depth + 1);
        default:
            return {};
    }
}

}  // namespace

int writeDictionary(sd_bus_message* message, const Dictionary& dictionary) {
    int result = sd_bus_message_open_container(message, 'a', "{sv}");
    for (std::size_t i = 0; i < dictionary.size() && result >= 0; ++i) {
        result = sd_bus_message_open_container(message, 'e', "sv");
        if (result >= 0) result = sd_bus_message_append(message, "s", plainLines(dictionary.keyAt(i)).c_str());
        if (result >= 0) result = writeVariant(message, dictionary.valueAt(i));
        if (result >= 0) result = sd_bus_message_close_container(message);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int writeDictionaries(sd_bus_message* message, const Array& dictionaries) {
    int result = sd_bus_message_open_container(message, 'a', "a{sv}");
    for (const Value& dictionary : dictionaries) {
        if (result >= 0 && dictionary.isDictionary()) result = writeDictionary(message, dictionary.dictionary());
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

namespace {

template <class Content>
int reply(sd_bus_message* call, const Content& content, int (*write)(sd_bus_message*, const Content&)) {
    sd_bus_message* message = nullptr;
    int result = sd_bus_message_new_method_return(call, &message);
    const BusMessagePointer owned(message);
    if (result >= 0) result = write(message, content);
    return result < 0 ? result : sd_bus_send(nullptr, message, nullptr);
}

}  // namespace

int replyDictionary(sd_bus_message* call, const Dictionary& dictionary) {
    return reply(call, dictionary, writeDictionary);
}

int replyDictionaries(sd_bus_message* call, const Array& dictionaries) {
    return reply(call, dictionaries, writeDictionaries);
}

std::optional<Value> readValue(sd_bus_message* message) {
    return read(message, 0);
}

}  // namespace quorel
