#include "base/PublicAddress.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <string>

#include "base/HostName.h"

namespace quillmar {
namespace {

using Address = std::span<const std::uint8_t>;

/// The addresses that begin with these bits.
struct Range {
    std::array<std::uint8_t, 16> prefix;
    std::size_t bits;

    bool contains(Address address) const {
        const std::size_t whole = bits / 8;
        if (!std::equal(prefix.begin(), prefix.begin() + whole, address.begin())) return false;
        const auto mask = static_cast<std::uint8_t>(0xff00U >> (bits % 8));
        return bits % 8 == 0 || ((prefix[whole] ^ address[whole]) & mask) == 0;
    }
};

// Ranges that are reserved for something else than the Internet.
constexpr auto reserved4 = std::to_array<Range>({{{0}, 8},
                                                 {{10}, 8},
                                                 {{127}, 8},
                                                 {{169, 254}, 16},
                                                 {{172, 16}, 12},
                                                 {{192, 0, 0}, 24},
                                                 {{192, 0, 2}, 24},
                                                 {{192, 168}, 16},
                                                 {{198, 51, 100}, 24},
                                                 {{203, 0, 113}, 24},
                                                 {{224}, 3}});
constexpr auto reserved6 = std::to_array<Range>({{{}, 127},
                                                 {{0x00, 0x64, 0xff, 0x9b, 0x00, 0x01}, 48},
                                                 {{0x01}, 64},
                                                 {{0x20, 0x01, 0x0d, 0xb8}, 32},
                                                 {{0xfc}, 7},
                                                 {{0xfe, 0x80}, 9},
                                                 {{0xff}, 8}});

/// Ranges of IPv6 that hold an address of IPv4 (mapped, or behind a translator or tunnel) from a byte on.
struct Wrapping {
    Range range;
    std::size_t offset;
};
constexpr auto wrappings = std::to_array<Wrapping>({{{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff}, 96}, 12},
                                                    {{{}, 96}, 12},
                                                    {{{0x00, 0x64, 0xff, 0x9b}, 96}, 12},
                                                    {{{0x20, 0x02}, 16}, 2}});

}  // namespace

bool isPublicAddress(Address address) {
    const auto isWithin = [&](const Range& range) { return range.contains(address); };
    if (address.size() == 4) return std::ranges::none_of(reserved4, isWithin);
    if (address.size() != 16 || std::ranges::any_of(reserved6, isWithin)) return false;
    return std::ranges::all_of(wrappings, [&](const Wrapping& wrapping) {
        return !wrapping.range.contains(address) || isPublicAddress(address.subspan(wrapping.offset, 4));
    });
}

bool mayBePublicHost(std::string_view host) {
    const std::string text(host);
    std::array<std::uint8_t, 16> address{};
    if (::inet_pton(AF_INET, text.c_str(), address.data()) == 1) {
        return isPublicAddress(Address(address).first(4));
    }
    if (::inet_pton(AF_INET6, text.c_str(), address.data()) == 1) return isPublicAddress(address);
    if (host.contains(':')) return false;  // an address of one of this machine's networks: "fe80::1%eth0"
    if (host.ends_with('.')) host.remove_suffix(1);
    const std::string_view lastLabel = host.substr(host.rfind('.') + 1);
    // Some resolvers take "127.1" and "0x7f.0.0.1" for addresses; no name of the Internet ends like these.
    const bool isName = !lastLabel.empty() && !(lastLabel.front() >= '0' && lastLabel.front() <= '9');
    return isName && !isLocalHostName(host);
}

}  // namespace quillmar
