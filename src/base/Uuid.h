#pragma once
#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {

/// A 128-bit identifier.
class Uuid {
public:
    /// The nil UUID, all zeros.
    constexpr Uuid() = default;
    constexpr explicit Uuid(const std::array<std::uint8_t, 16>& bytes) : bytes_(bytes) {}

    /// A new random one (version 4).
    static Uuid random();
    /// The one that follows from a namespace and a name (version 5): the same inputs always give the same.
    static Uuid fromName(const Uuid& nameSpace, std::string_view name);
    /// Reads the form 8-4-4-4-12 in either case; nothing for any other text.
    static std::optional<Uuid> parse(std::string_view text);

    /// Upper-case text, as documents hold it.
    std::string string() const;
    /// Lower-case text.
    std::string lowercaseString() const;
    const std::array<std::uint8_t, 16>& bytes() const { return bytes_; }
    auto operator<=>(const Uuid&) const = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace quillmar
