#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmar {

/// 64-bit FNV-1a of the text's bytes.
constexpr std::uint64_t fnv1a64(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : text) {
        hash ^= static_cast<std::uint8_t>(c);
        hash *= 0x100000001b3u;
    }
    return hash;
}
/// Lower-case hexadecimal without leading zeros.
std::string hexadecimal(std::uint64_t value);

}  // namespace quillmar
