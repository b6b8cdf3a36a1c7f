#include "base/Hash.h"

#include <fmt/format.h>
#include <glib.h>

#include <memory>

namespace quillmar {

std::string hexadecimal(std::uint64_t value) { return fmt::format("{:x}", value); }

std::string sha256Hex(std::span<const std::uint8_t> bytes) {
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256, bytes.data(), bytes.size()), &g_free);
    return text.get();
}

}  // namespace quillmar
