#pragma once
#include <cstdint>
#include <span>

namespace quillmar {

/// The checksum of a PNG chunk, over its name and its bytes.
constexpr std::uint32_t crc32(std::span<const std::uint8_t> bytes) {
    std::uint32_t crc = ~0u;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

}  // namespace quillmar
