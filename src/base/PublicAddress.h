#pragma once
#include <cstdint>
#include <span>
#include <string_view>

namespace quillmar {

/// Whether an address (4 or 16 bytes, in the network's order) may be one of the public Internet: not this
/// machine, nor a private, link-local, multicast or otherwise reserved network. The ranges that transparent
/// proxies answer from in the Internet's place, 100.64.0.0/10 and 198.18.0.0/15, pass.
bool isPublicAddress(std::span<const std::uint8_t> address);

/// Whether a URL's host may be of the public Internet, as far as its text tells: not what other names lead
/// to.
bool mayBePublicHost(std::string_view host);

}  // namespace quillmar
