#include "base/Sha256.h"

#include <glib.h>

namespace quillmar {

Sha256::Sha256() : checksum_(g_checksum_new(G_CHECKSUM_SHA256)) {}

void Sha256::Free::operator()(void* checksum) const { g_checksum_free(static_cast<GChecksum*>(checksum)); }

void Sha256::add(std::span<const std::uint8_t> bytes) {
    g_checksum_update(static_cast<GChecksum*>(checksum_.get()), bytes.data(),
                      static_cast<gssize>(bytes.size()));
}

std::string Sha256::hexadecimal() { return g_checksum_get_string(static_cast<GChecksum*>(checksum_.get())); }

}  // namespace quillmar
