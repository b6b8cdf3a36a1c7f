#include "base/Bytes.h"

#include <glib.h>

#include <memory>

namespace quillmar {

std::string base64Encoded(std::span<const std::uint8_t> bytes) {
    const std::unique_ptr<char, decltype(&g_free)> text(g_base64_encode(bytes.data(), bytes.size()), &g_free);
    return text.get();
}

std::optional<Bytes> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    gsize length = 0;
    const std::unique_ptr<guchar, decltype(&g_free)> decoded(
        g_base64_decode(std::string(text).c_str(), &length), &g_free);
    Bytes bytes(decoded.get(), decoded.get() + length);
    // GLib skips what it does not know; only a text that encodes back to itself was Base64.
    if (base64Encoded(bytes) != text) return std::nullopt;
    return bytes;
}

}  // namespace quillmar
