#include <charconv>
#include <cmath>
#include <cstdio>

#include "model/PlainText.h"
#include "model/PropertyList.h"
#include "model/PropertyListContent.h"
#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::string_view kBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kEnd = "</plist>\n";

class XmlWriter {
public:
    explicit XmlWriter(std::size_t maximumBytes) : _maximumBytes(maximumBytes) {}

    std::optional<std::string> write(const Value& value) {
        _xml = kBegin;
        if (!put(value, 0)) return {};
        _xml += kEnd;
        if (_xml.size() > _maximumBytes) return {};
        return std::move(_xml);
    }

private:
    /// `depth`: how many containers it stands in.
    bool put(const Value& value, int depth) {
        if (_xml.size() > _maximumBytes) return false;
        if (value.isArray()) return putArray(value.array(), depth);
        if (value.isDictionary()) return putDictionary(value.dictionary(), depth);
        if (value.isText()) return putText("string", value.text(), depth);
        if (value.isDate()) return putDate(value.date(), depth);
        if (value.isBoolean()) return putLine(value.intValue() ? "<true/>" : "<false/>", depth);
        if (value.isInteger()) return putElement("integer", std::to_string(value.integer()), depth);
        if (value.isReal()) return putElement("real", realText(value.real()), depth);
        return value.isData() && putElement("data", base64(value.data()), depth);
    }

    bool putArray(const Array& array, int depth) {
        if (depth == kMaximumPropertyListDepth) return false;
        if (array.empty()) return putLine("<array/>", depth);
        putLine("<array>", depth);
        for (const auto& value : array)
            if (!put(value, depth + 1)) return false;
        return putLine("</array>", depth);
    }

    bool putDictionary(const Dictionary& dictionary, int depth) {
        if (depth == kMaximumPropertyListDepth) return false;
        if (dictionary.size() == 0) return putLine("<dict/>", depth);
        putLine("<dict>", depth);
        for (std::size_t i = 0; i < dictionary.size(); ++i)
            if (!putText("key", dictionary.keyAt(i), depth + 1) || !put(dictionary.valueAt(i), depth + 1)) return false;
        return putLine("</dict>", depth);
    }

    bool putDate(Date date, int depth) {
        const auto time = calendarTime(date);
        if (!time) return false;
        const auto day = std::chrono::floor<std::chrono::days>(*time);
        const std::chrono::year_month_day ymd(day);
        const std::chrono::hh_mm_ss clock(*time - day);
        char text[64];
        std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", int(ymd.year()), unsigned(ymd.month()),
                      unsigned(ymd.day()), static_cast<int>(clock.hours().count()),
                      static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
        return putElement("date", text, depth);
    }

    bool putText(std::string_view element, std::string_view text, int depth) {
        if (!isPropertyListText(text)) return false;
        std::string escaped;
        escaped.reserve(text.size());
        while (!text.empty()) {
            escaped += escapedMarkup(takeAscii(text));
            if (text.empty()) break;
            const std::string_view from = text;
            const char32_t c = takeCharacter(text);
            // By its number it does nothing to whoever shows or sends the list; a bare "\r" is read as a line feed.
            if (!isPlain(c) && c != '\n' && c != '\t')
                escaped += "&#" + std::to_string(static_cast<std::uint32_t>(c)) + ";";
            else
                escaped += from.substr(0, from.size() - text.size());
        }
        return putElement(element, escaped, depth);
    }

    bool putElement(std::string_view name, std::string_view content, int depth) {
        indent(depth);
        _xml.append("<").append(name).append(">").append(content).append("</").append(name).append(">\n");
        return true;
    }

    bool putLine(std::string_view line, int depth) {
        indent(depth);
        _xml.append(line).append("\n");
        return true;
    }

    void indent(int depth) { _xml.append(static_cast<std::size_t>(depth), '\t'); }

    static std::string realText(double real) {
        if (std::isnan(real)) return "nan";
        if (std::isinf(real)) return real > 0 ? "+infinity" : "-infinity";
        char text[32];
        return {text, std::to_chars(text, text + sizeof text, real).ptr};  // the shortest that reads as the same
    }

    static std::string base64(const Data& data) {
        std::string text;
        text.reserve((data.size() + 2) / 3 * 4);
        for (std::size_t i = 0; i < data.size(); i += 3) {
            const std::size_t left = data.size() - i;
            const auto byte = [&](std::size_t place) -> unsigned { return place < left ? data[i + place] : 0; };
            const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
            text += kBase64Digits[bits >> 18];
            text += kBase64Digits[bits >> 12 & 63];
            text += left > 1 ? kBase64Digits[bits >> 6 & 63] : '=';
            text += left > 2 ? kBase64Digits[bits & 63] : '=';
        }
        return text;
    }

    const std::size_t _maximumBytes;
    std::string _xml;
};

}  // namespace

std::optional<std::string> encodePropertyList(const Value& value, std::size_t maximumBytes) {
    return XmlWriter(maximumBytes).write(value);
}

}  // namespace quorel
