#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace quillmar {

/// The SHA-256 digest of bytes that come piece by piece.
class Sha256 {
public:
    Sha256();
    void add(std::span<const std::uint8_t> bytes);
    /// Lower-case hexadecimal. Nothing can be added any more.
    std::string hexadecimal();

private:
    struct Free {
        void operator()(void* checksum) const;
    };
    std::unique_ptr<void, Free> checksum_;
};

}  // namespace quillmar
