#pragma once
#include <cstddef>
#include <filesystem>
#include <span>

#include "base/Bytes.h"

namespace quillmar {

inline constexpr std::size_t publicKeyBytes = 32;
inline constexpr std::size_t signatureBytes = 64;

/// Whether the Ed25519 signature of the whole file was made with the other half of the key. No signature or
/// key of another length ever was. Throws `std::system_error` for a file that cannot be read; waits for the
/// disk.
bool isFileSigned(const std::filesystem::path& file, std::span<const std::uint8_t> signature,
                  std::span<const std::uint8_t> publicKey);

}  // namespace quillmar
