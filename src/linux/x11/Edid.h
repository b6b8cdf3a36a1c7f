#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quillmar {

/// What a monitor says of itself, as far as it tells it from others.
struct Edid {
    std::string maker;  ///< three letters
    std::uint16_t product = 0;
    std::uint32_t serialNumber = 0;
    std::string serialText;   ///< printable ASCII; empty when the monitor has none
    std::string monitorName;  ///< printable ASCII; empty when the monitor has none
    bool operator==(const Edid&) const = default;
};

/// Reads the first block of what a monitor has sent; nothing when it is no EDID. The checksum is not asked
/// for: too many monitors have a wrong one.
std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes);

}  // namespace quillmar
