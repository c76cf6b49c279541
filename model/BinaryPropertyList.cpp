#include <bit>
#include <cstdint>

#include "model/PropertyList.h"
#include "model/PropertyListContent.h"
#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kTrailerBytes = 32;
constexpr std::size_t kBytesPerValue = 8;  // what a value counts for beside its content

/// Values refer to each other by number. Each is read once and shared, but what the list would take when written out
/// without sharing keeps the size limit too: a small file could otherwise stand for any number of values.
class BinaryReader {
public:
    BinaryReader(std::string_view bytes, std::size_t maximumBytes) : _bytes(bytes), _maximumBytes(maximumBytes) {}

    std::optional<Value> read() {
        if (_bytes.size() < kHeaderBytes + kTrailerBytes) return {};
        const std::size_t trailer = _bytes.size() - kTrailerBytes;
        _offsetSize = static_cast<std::size_t>(number(trailer + 6, 1));
        _referenceSize = static_cast<std::size_t>(number(trailer + 7, 1));
        const std::uint64_t count = number(trailer + 8, 8), root = number(trailer + 16, 8);
        const std::uint64_t table = number(trailer + 24, 8);
        if (_offsetSize < 1 || _offsetSize > 8 || _referenceSize < 1 || _referenceSize > 8) return {};
        if (table < kHeaderBytes || table > trailer || count > (trailer - table) / _offsetSize || root >= count)
            return {};
        if (count > _maximumBytes / kBytesPerValue) return {};  // each is referred to at least once
        _table = static_cast<std::size_t>(table);
        _objects.resize(static_cast<std::size_t>(count));
        const Object* object = objectAt(root, 1);
        if (!object) return {};
        return object->value;
    }

private:
    struct Object {
        Value value;              ///< absent until read
        std::uint64_t bytes = 0;  ///< written out without sharing
        int height = 0;           ///< of containers, itself included
    };

    /// Big-endian; the place has been checked.
    std::uint64_t number(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) value = value << 8 | static_cast<unsigned char>(_bytes[at + i]);
        return value;
    }

    /// What stands between the header and the table; objects end there.
    bool isInside(std::uint64_t at, std::uint64_t size) const { return at <= _table && size <= _table - at; }

    /// `depth`: which container of a path from the root this would be. Null for whatever is malformed or too much.
    const Object* objectAt(std::uint64_t index, int depth) {
        if (index >= _objects.size()) return nullptr;
        Object& object = _objects[static_cast<std::size_t>(index)];
        if (object.value.isAbsent() && !(depth <= kMaximumPropertyListDepth + 1 && readObject(index, object, depth)))
            return nullptr;
        const bool tooDeep = depth - 1 + object.height > kMaximumPropertyListDepth;
        return tooDeep || object.bytes > _maximumBytes ? nullptr : &object;
    }

    bool readObject(std::uint64_t index, Object& object, int depth) {
        const std::uint64_t offset = number(_table + static_cast<std::size_t>(index) * _offsetSize, _offsetSize);
        if (offset < kHeaderBytes || !isInside(offset, 1)) return false;
        auto at = static_cast<std::size_t>(offset);
        const auto marker = static_cast<unsigned>(number(at++, 1));
        const unsigned kind = marker >> 4, low = marker & 0xf;
        object.bytes = kBytesPerValue;
        if (marker == 0x08 || marker == 0x09) {
            object.value = Value(marker == 0x09);
            return true;
        }
        if (kind == 0x1) return readInteger(at, low, object.value);
        if (kind == 0x2 || marker == 0x33) return readReal(at, marker, object.value);
        std::uint64_t count = low;
        if (low == 0xf && !readCount(at, count)) return false;
        if (kind == 0x4 || kind == 0x5 || kind == 0x6) return readBytes(at, count, kind, object);
        if (kind == 0xa) return readArray(at, count, object, depth);
        return kind == 0xd && readDictionary(at, count, object, depth);
    }

    bool readCount(std::size_t& at, std::uint64_t& count) const {
        if (!isInside(at, 1)) return false;
        const auto marker = static_cast<unsigned>(number(at, 1));
        const std::size_t size = std::size_t{1} << (marker & 0xf);
        if (marker >> 4 != 0x1 || size > 8 || !isInside(at + 1, size)) return false;
        count = number(at + 1, size);
        at += 1 + size;
        return true;
    }

    bool readInteger(std::size_t at, unsigned power, Value& value) const {
        if (power > 4 || !isInside(at, std::uint64_t{1} << power)) return false;
        if (power < 4) {
            value = Value(static_cast<std::int64_t>(number(at, std::size_t{1} << power)));
            return true;
        }
        const auto integer = static_cast<std::int64_t>(number(at + 8, 8));
        if (number(at, 8) != (integer < 0 ? UINT64_MAX : 0)) return false;  // more than 64 bits
        value = Value(integer);
        return true;
    }

    bool readReal(std::size_t at, unsigned marker, Value& value) const {
        const std::size_t size = marker == 0x22 ? 4 : 8;
        if ((marker != 0x22 && marker != 0x23 && marker != 0x33) || !isInside(at, size)) return false;
        const std::uint64_t bits = number(at, size);
        const double real =
            size == 4 ? std::bit_cast<float>(static_cast<std::uint32_t>(bits)) : std::bit_cast<double>(bits);
        value = marker == 0x33 ? Value(Date{real}) : Value(real);
        return marker != 0x33 || calendarTime({real}).has_value();
    }

    bool readBytes(std::size_t at, std::uint64_t count, unsigned kind, Object& object) {
        const std::uint64_t unit = kind == 0x6 ? 2 : 1;
        if (count > _bytes.size() || !isInside(at, count * unit)) return false;
        const std::string_view bytes = _bytes.substr(at, static_cast<std::size_t>(count * unit));
        object.bytes += bytes.size();
        if (kind == 0x4) {
            object.value = Value(Data(bytes.begin(), bytes.end()));
            return true;
        }
        auto text = kind == 0x5 ? std::optional(std::string(bytes)) : fromUtf16(bytes);
        if (!text || !isPropertyListText(*text)) return false;
        object.value = Value(std::move(*text));
        return true;
    }

    static std::optional<std::string> fromUtf16(std::string_view bytes) {
        const auto unit = [&](std::size_t at) {
            return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at]) << 8 |
                                              static_cast<unsigned char>(bytes[at + 1]));
        };
        std::string text;
        for (std::size_t at = 0; at < bytes.size(); at += 2) {
            std::uint32_t codePoint = unit(at);
            if (codePoint >> 10 == 0x36 && at + 2 < bytes.size() && unit(at + 2) >> 10 == 0x37) {
                at += 2;
                codePoint = 0x10000 + ((codePoint & 0x3ff) << 10) + (unit(at) & 0x3ff);
            }
            if (!appendCharacter(text, codePoint)) return {};  // a half of a pair
        }
        return text;
    }

    /// A member of a container, which grows by it.
    const Object* member(std::size_t references, std::uint64_t position, Object& container, int depth) {
        const std::size_t at = references + static_cast<std::size_t>(position) * _referenceSize;
        const Object* object = objectAt(number(at, _referenceSize), depth + 1);
        if (!object) return nullptr;
        container.bytes += object->bytes;
        container.height = std::max(container.height, object->height + 1);
        return container.bytes > _maximumBytes ? nullptr : object;
    }

    bool readArray(std::size_t at, std::uint64_t count, Object& object, int depth) {
        if (count > _bytes.size() || !isInside(at, count * _referenceSize)) return false;
        object.height = 1;
        Array values;
        for (std::uint64_t i = 0; i < count; ++i) {
            const Object* value = member(at, i, object, depth);
            if (!value) return false;
            values.push_back(value->value);
        }
        object.value = Value(std::move(values));
        return true;
    }

    bool readDictionary(std::size_t at, std::uint64_t count, Object& object, int depth) {
        if (count > _bytes.size() || !isInside(at, 2 * count * _referenceSize)) return false;
        object.height = 1;
        DictionaryMaker::Entries entries;
        for (std::uint64_t i = 0; i < count; ++i) {
            const Object* key = member(at, i, object, depth);
            if (!key || !key->value.isText()) return false;
            const Object* value = member(at, count + i, object, depth);
            if (!value) return false;
            entries.emplace_back(key->value.text(), value->value);
        }
        object.value = _maker.dictionary(std::move(entries));
        return true;
    }

    const std::string_view _bytes;
    const std::size_t _maximumBytes;
    std::size_t _offsetSize = 0;
    std::size_t _referenceSize = 0;
    std::size_t _table = 0;
    std::vector<Object> _objects;  // never grows while it is read: pointers into it stay
    DictionaryMaker _maker;
};

}  // namespace

std::optional<Value> readBinaryPropertyList(std::string_view bytes, std::size_t maximumBytes) {
    return BinaryReader(bytes, maximumBytes).read();
}

}  // namespace quorel
