#include "linux/soup/PublicAddress.h"

#include <gio/gio.h>

#include <array>
#include <cstdint>
#include <string_view>

#include "base/HostName.h"
#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

/// Ranges that are reserved for something else than the Internet.
constexpr auto reservedRanges = std::to_array<const char*>(
    {"0.0.0.0/8",       "10.0.0.0/8",     "100.64.0.0/10", "127.0.0.0/8",    "169.254.0.0/16",
     "172.16.0.0/12",   "192.0.0.0/24",   "192.0.2.0/24",  "192.168.0.0/16", "198.18.0.0/15",
     "198.51.100.0/24", "203.0.113.0/24", "224.0.0.0/3",   "::/127",         "64:ff9b:1::/48",
     "100::/64",        "2001:db8::/32",  "fc00::/7",      "fe80::/9",       "ff00::/8"});

/// An IPv4 address within one of IPv6 (mapped, or behind a translator or tunnel); nothing when there is none.
Ref<GInetAddress> innerIPv4(GInetAddress* address) {
    if (g_inet_address_get_family(address) != G_SOCKET_FAMILY_IPV6) return {};
    const guint8* bytes = g_inet_address_to_bytes(address);
    struct Wrapping {
        std::array<guint8, 12> prefix;
        std::size_t prefixLength;
        std::size_t offset;
    };
    static constexpr std::array wrappings{
        Wrapping{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff}, 12, 12},
        Wrapping{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 12, 12},
        Wrapping{{0x00, 0x64, 0xff, 0x9b, 0, 0, 0, 0, 0, 0, 0, 0}, 12, 12},
        Wrapping{{0x20, 0x02}, 2, 2},
    };
    for (const Wrapping& wrapping : wrappings) {
        if (std::equal(bytes, bytes + wrapping.prefixLength, wrapping.prefix.begin())) {
            return Ref<GInetAddress>::adopt(
                g_inet_address_new_from_bytes(bytes + wrapping.offset, G_SOCKET_FAMILY_IPV4));
        }
    }
    return {};
}

}  // namespace

bool isPublicAddress(GInetAddress* address) {
    for (const char* range : reservedRanges) {
        const auto mask = Ref<GInetAddressMask>::adopt(g_inet_address_mask_new_from_string(range, nullptr));
        if (mask && g_inet_address_mask_matches(mask.get(), address)) return false;
    }
    const Ref<GInetAddress> inner = innerIPv4(address);
    return !inner || isPublicAddress(inner.get());
}

bool mayBePublicHost(const std::string& host) {
    const auto address = Ref<GInetAddress>::adopt(g_inet_address_new_from_string(host.c_str()));
    if (address) return isPublicAddress(address.get());
    std::string_view name = host;
    if (name.ends_with('.')) name.remove_suffix(1);
    const std::string_view lastLabel = name.substr(name.rfind('.') + 1);
    // Some resolvers take "127.1" and "0x7f.0.0.1" for addresses; no name of the Internet ends like these.
    const bool isName = !lastLabel.empty() && !(lastLabel.front() >= '0' && lastLabel.front() <= '9');
    return isName && !isLocalHostName(name);
}

}  // namespace quillmar
