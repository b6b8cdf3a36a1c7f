#include "base/PublicAddress.h"

#include <gtest/gtest.h>

namespace quillmar {
namespace {

TEST(PublicAddressTest, theInternetIsWhatNoOtherNetworkHasReserved) {
    for (const char* host :
         {"8.8.8.8", "172.15.0.1", "172.32.0.1", "223.255.255.1", "2606:4700::1111", "2a00::1",
          "::ffff:8.8.8.8", "64:ff9b::808:808", "2002:808:808::1", "fe00::1",
          // what transparent proxies answer from
          "100.64.0.1", "100.127.255.1", "198.18.0.7", "198.19.255.1", "::ffff:198.18.0.7",
          // names
          "a.example", "A.EXAMPLE.", "xn--bcher-kva.example", "bücher.рф", "localhost.example"}) {
        EXPECT_TRUE(mayBePublicHost(host)) << host;
    }
    for (const char* host :
         {"0.0.0.0", "10.1.2.3", "127.8.9.1", "169.254.1.1", "172.16.0.1", "172.31.255.1", "192.0.0.8",
          "192.0.2.1", "192.168.1.1", "198.51.100.1", "203.0.113.1", "224.0.0.1", "240.0.0.1",
          "255.255.255.255", "::", "::1", "fc00::1", "fd12::1", "fe80::1", "fec0::1", "ff02::1", "100::1",
          "2001:db8::1", "64:ff9b:1::1", "::ffff:10.0.0.1", "::127.0.0.1", "64:ff9b::7f00:1",
          "2002:7f00:1::1", "fe80::1%eth0", "fe80::1%eth0.example",
          // what some resolvers take for addresses, and names of this network
          "127.1", "2130706433", "0x7f.0.0.1", "127.0.0.1.", "", ".", "localhost", "LocalHost.",
          "a.localhost", "printer", "nas.local"}) {
        EXPECT_FALSE(mayBePublicHost(host)) << host;
    }
}

}  // namespace
}  // namespace quillmar
