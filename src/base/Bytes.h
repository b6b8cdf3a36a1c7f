#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar {

using Bytes = std::vector<std::uint8_t>;

std::string base64Encoded(std::span<const std::uint8_t> bytes);
/// Nothing for a text that is not strict Base64 with padding.
std::optional<Bytes> base64Decoded(std::string_view text);
inline std::span<const std::uint8_t> asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace quillmar
