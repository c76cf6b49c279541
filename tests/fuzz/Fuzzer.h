#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace quorel {

/// What one input goes through.
void feed(std::string_view bytes);

/// The fuzzer keeps the input that ends the program.
inline void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace quorel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quorel::feed({reinterpret_cast<const char*>(data), size});
    return 0;
}
