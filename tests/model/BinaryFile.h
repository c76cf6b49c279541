#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorel {

inline std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(number >> 8 * size);
    return bytes;
}

/// A container object whose members are named by number, four bytes each; of a dictionary, all keys come first.
inline std::string container(char kind, const std::vector<std::uint32_t>& members) {
    const std::size_t count = kind == '\xd0' ? members.size() / 2 : members.size();
    std::string bytes(1, static_cast<char>(kind | 0xf));
    bytes += '\x12' + bigEndian(count, 4);
    for (const auto member : members) bytes += bigEndian(member, 4);
    return bytes;
}
inline std::string arrayObject(const std::vector<std::uint32_t>& members) {
    return container('\xa0', members);
}
inline std::string dictionaryObject(const std::vector<std::uint32_t>& members) {
    return container('\xd0', members);
}

/// A binary property list of these objects; the first is the root.
inline std::string binaryFile(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00", offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const std::size_t table = bytes.size();
    return bytes + offsets + std::string(6, '\0') + "\x04\x04" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(table, 8);
}

}  // namespace quorel
