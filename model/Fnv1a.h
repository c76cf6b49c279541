#pragma once

#include <cstdint>
#include <string_view>

namespace quorel {

/// FNV-1a in 64 bits: the same on every computer and in every version, fit to be stored.
class Fnv1a {
public:
    constexpr void add(std::string_view bytes) {
        for (const char byte : bytes) _hash = (_hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
    }
    constexpr std::uint64_t result() const { return _hash; }

private:
    std::uint64_t _hash = 0xCBF29CE484222325u;
};

}  // namespace quorel
