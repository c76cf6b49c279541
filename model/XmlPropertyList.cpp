#include <expat.h>

#include <charconv>
#include <cstdint>
#include <exception>
#include <memory>
#include <system_error>
#include <utility>

#include "model/PropertyList.h"
#include "model/PropertyListContent.h"

namespace quorel {

namespace {

constexpr std::string_view kSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

template <class Number, class... Base>
bool readWhole(std::string_view text, Number& number, Base... base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    return error == std::errc() && end == text.data() + text.size();
}

std::optional<Value> integerOf(std::string_view text) {
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    if (!readWhole(text, magnitude, hexadecimal ? 16 : 10)) return {};
    const std::uint64_t limit = (std::uint64_t{1} << 63) - (negative ? 0 : 1);
    if (magnitude > limit) return {};
    return Value(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}

std::optional<Value> realOf(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with("+-")) return {};
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    if (!readWhole(text, number)) return {};
    return Value(number);
}

/// "2001-01-01T00:00:00Z"
std::optional<Value> calendarDateOf(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    text = trimmed(text);
    if (text.size() != kForm.size()) return {};
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        const bool fits = kForm[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == kForm[i];
        if (!fits) return {};
    }
    const auto number = [&](std::size_t at, std::size_t length) {
        int digits = 0;
        readWhole(text.substr(at, length), digits);
        return digits;
    };
    const auto month = std::chrono::month(static_cast<unsigned>(number(5, 2)));
    const auto day = std::chrono::day(static_cast<unsigned>(number(8, 2)));
    const auto date = std::chrono::year(number(0, 4)) / month / day;
    const int hour = number(11, 2), minute = number(14, 2), second = number(17, 2);
    if (number(0, 4) < 1 || !date.ok() || hour > 23 || minute > 59 || second > 59) return {};
    const auto time = std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                      std::chrono::seconds(second);
    return Value(dateOf(std::chrono::sys_seconds(time)));
}

std::optional<Value> dataOf(std::string_view text) {
    Data data;
    std::uint32_t bits = 0;
    unsigned digits = 0, padding = 0;
    for (const char c : text) {
        if (kSpace.find(c) != std::string_view::npos) continue;
        const std::size_t digit = kBase64Digits.find(c);
        if (c == '=') {
            ++padding;
            continue;
        }
        if (digit == std::string_view::npos || padding > 0) return {};
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        if (++digits % 4 == 0)
            for (const unsigned shift : {16U, 8U, 0U}) data.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    const unsigned left = digits % 4;
    if (left == 1 || padding != (4 - left) % 4) return {};
    if (left == 2) data.push_back(static_cast<std::uint8_t>(bits >> 4));
    if (left == 3) {
        data.push_back(static_cast<std::uint8_t>(bits >> 10));
        data.push_back(static_cast<std::uint8_t>(bits >> 2));
    }
    return Value(std::move(data));
}

/// Builds values as Expat meets their elements. A method that answers false ends the reading.
class XmlReader {
public:
    std::optional<Value> read(std::string_view bytes) {
        if (!_parser) return {};
        XML_SetUserData(_parser.get(), this);
        XML_SetStartDoctypeDeclHandler(_parser.get(), handler<&XmlReader::documentType>);
        XML_SetSkippedEntityHandler(_parser.get(), handler<&XmlReader::skippedEntity>);
        XML_SetElementHandler(_parser.get(), handler<&XmlReader::start>, handler<&XmlReader::end>);
        XML_SetCharacterDataHandler(_parser.get(), handler<&XmlReader::characters>);
        // In one piece: of several, Expat 2.5 begins an unfinished token anew with each.
        const auto size = static_cast<int>(bytes.size());
        if (XML_Parse(_parser.get(), bytes.data(), size, XML_TRUE) != XML_STATUS_OK) return {};
        return std::move(_root);
    }

private:
    struct Container {
        bool isDictionary = false;
        Array values;                      ///< of an array
        DictionaryMaker::Entries entries;  ///< of a dictionary; the last one's value is absent until it is read

        bool lacksValue() const { return !entries.empty() && entries.back().second.isAbsent(); }
    };

    /// Expat may call on after it was stopped, and no exception may pass through it.
    template <auto method, class... Arguments>
    static void handler(void* user, Arguments... arguments) noexcept {
        auto& reader = *static_cast<XmlReader*>(user);
        if (reader._stopped) return;
        try {
            reader._stopped = !(reader.*method)(arguments...);
        } catch (const std::exception&) {  // out of memory
            reader._stopped = true;
        }
        if (reader._stopped) XML_StopParser(reader._parser.get(), XML_FALSE);
    }

    /// Where entities could be declared.
    bool documentType(const char*, const char*, const char*, int hasInternalSubset) { return !hasInternalSubset; }

    /// One that the file named by the document type might declare; nobody fetches that.
    bool skippedEntity(const char*, int) { return false; }

    bool start(const char* element, const char**) {
        const std::string_view name(element);
        if (!_insideRoot) return _insideRoot = name == "plist";
        if (_insideText || !admits(name == "key")) return false;
        _insideText = name != "array" && name != "dict";
        if (_insideText) return true;
        if (_containers.size() == kMaximumPropertyListDepth) return false;
        _containers.emplace_back().isDictionary = name == "dict";
        return true;
    }

    bool end(const char* element) {
        const std::string_view name(element);
        if (_insideText) {
            _insideText = false;
            auto text = std::exchange(_text, {});
            if (name != "key") return add(valueOf(name, std::move(text)));
            _containers.back().entries.emplace_back(std::move(text), Value());
            return true;
        }
        if (_containers.empty()) return _root.isPresent();
        Container container = std::move(_containers.back());
        _containers.pop_back();
        if (container.lacksValue()) return false;
        return add(container.isDictionary ? _maker.dictionary(std::move(container.entries))
                                          : Value(std::move(container.values)));
    }

    bool characters(const char* data, int size) {
        const std::string_view text(data, static_cast<std::size_t>(size));
        if (!_insideText) return trimmed(text).empty();
        _text.append(text);
        return true;
    }

    /// Whether a key, or else a value, may stand here.
    bool admits(bool key) const {
        if (_containers.empty()) return !key && _root.isAbsent();
        const Container& container = _containers.back();
        return container.isDictionary ? key != container.lacksValue() : !key;
    }

    bool add(std::optional<Value> value) {
        if (!value) return false;
        if (_containers.empty())
            _root = std::move(*value);
        else if (Container& container = _containers.back(); container.isDictionary)
            container.entries.back().second = std::move(*value);
        else
            container.values.push_back(std::move(*value));
        return true;
    }

    std::optional<Value> valueOf(std::string_view element, std::string text) {
        if (element == "string") return Value(std::move(text));
        if (element == "integer") return integerOf(text);
        if (element == "real") return realOf(text);
        if (element == "date") return calendarDateOf(text);
        if (element == "data") return dataOf(text);
        if ((element == "true" || element == "false") && trimmed(text).empty()) return Value(element == "true");
        return {};
    }

    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> _parser{XML_ParserCreate(nullptr),
                                                                               XML_ParserFree};
    std::vector<Container> _containers;  ///< the open ones, outermost first
    std::string _text;
    DictionaryMaker _maker;
    Value _root;
    bool _insideRoot = false;
    bool _insideText = false;  ///< in an element of text
    bool _stopped = false;
};

}  // namespace

std::optional<Value> readXmlPropertyList(std::string_view bytes) {
    return XmlReader().read(bytes);
}

}  // namespace quorel
