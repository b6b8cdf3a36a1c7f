#include "base/Uuid.h"

#include <glib.h>

#include <memory>

#include "base/Text.h"

namespace quillmar {

Uuid Uuid::random() {
    const std::unique_ptr<char, decltype(&g_free)> text(g_uuid_string_random(), &g_free);
    return *parse(text.get());
}

Uuid Uuid::fromName(const Uuid& nameSpace, std::string_view name) {
    const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> sum(g_checksum_new(G_CHECKSUM_SHA1),
                                                                     &g_checksum_free);
    g_checksum_update(sum.get(), nameSpace.bytes_.data(), static_cast<gssize>(nameSpace.bytes_.size()));
    g_checksum_update(sum.get(), reinterpret_cast<const guchar*>(name.data()),
                      static_cast<gssize>(name.size()));
    std::array<std::uint8_t, 20> digest{};
    gsize length = digest.size();
    g_checksum_get_digest(sum.get(), digest.data(), &length);
    Uuid uuid;
    std::copy_n(digest.begin(), uuid.bytes_.size(), uuid.bytes_.begin());
    uuid.bytes_[6] = static_cast<std::uint8_t>((uuid.bytes_[6] & 0x0f) | 0x50);
    uuid.bytes_[8] = static_cast<std::uint8_t>((uuid.bytes_[8] & 0x3f) | 0x80);
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    std::array<std::uint8_t, 16> bytes{};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const int digit = g_ascii_xdigit_value(text[i]);
        if (digit < 0) return std::nullopt;
        auto& byte = bytes[digits++ / 2];
        byte = static_cast<std::uint8_t>(byte * 16 + digit);
    }
    return Uuid(bytes);
}

std::string Uuid::lowercaseString() const {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += digits[bytes_[i] >> 4];
        text += digits[bytes_[i] & 0x0f];
    }
    return text;
}

std::string Uuid::string() const { return uppercased(lowercaseString()); }

}  // namespace quillmar
