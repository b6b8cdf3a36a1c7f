#include "storage/LastUsedStamp.h"

#include <sys/xattr.h>

#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "base/Text.h"

namespace quillmar {
namespace {

// Linux lets a program set attributes of its own under "user." alone.
constexpr const char* attribute = "user.com.quillmar.cache.last-used";
/// 9999-12-31, beyond which a stamp is no moment of this program's life.
constexpr double latestSeconds = 253402300799.0;

}  // namespace

void stampLastUsed(const std::filesystem::path& file, WallTime time) {
    const std::string text = shortestDecimal(secondsSince1970(time));
    ::setxattr(file.c_str(), attribute, text.data(), text.size(), 0);
}

std::optional<WallTime> lastUsedStamp(const std::filesystem::path& file) {
    std::array<char, 64> buffer{};
    const ssize_t length = ::getxattr(file.c_str(), attribute, buffer.data(), buffer.size());
    if (length < 1) return std::nullopt;
    double seconds = 0;
    const char* end = buffer.data() + length;
    const auto [stop, failure] = std::from_chars(buffer.data(), end, seconds);
    if (failure != std::errc() || stop != end || !std::isfinite(seconds)) return std::nullopt;
    if (std::abs(seconds) > latestSeconds) return std::nullopt;
    return wallTimeSince1970(seconds);
}

}  // namespace quillmar
