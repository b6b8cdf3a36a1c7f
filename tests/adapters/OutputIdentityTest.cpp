#include "linux/x11/OutputIdentity.h"

#include <gmock/gmock.h>

#include "linux/x11/Edid.h"

namespace quillmar {
namespace {

using testing::Eq;
using testing::Optional;

/// The block of a monitor "DEL" 0xa0c1.
Bytes edid(std::uint32_t serialNumber, std::string_view serialText = {}, std::string_view name = {}) {
    Bytes block(128);
    const Bytes head{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00, 0x10, 0xac, 0xc1, 0xa0};
    std::ranges::copy(head, block.begin());
    for (std::size_t i = 0; i < 4; ++i) block[12 + i] = static_cast<std::uint8_t>(serialNumber >> (8 * i));
    block[54] = 0x02;  // a timing in the first place
    const auto describe = [&](std::size_t at, std::uint8_t tag, std::string_view text) {
        if (text.empty()) return;
        block[at + 3] = tag;
        std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(at) + 5, 13, std::uint8_t{' '});
        std::ranges::copy(text, block.begin() + static_cast<std::ptrdiff_t>(at) + 5);
        if (text.size() < 13) block[at + 5 + text.size()] = '\n';
    };
    describe(72, 0xff, serialText);
    describe(90, 0xfc, name);
    return block;
}

std::vector<Uuid> uuidsOf(const std::vector<ConnectedOutput>& outputs) {
    const auto byNumber = outputUuids(outputs);
    std::vector<Uuid> uuids;
    for (const ConnectedOutput& output : outputs) uuids.push_back(byNumber.at(output.number));
    return uuids;
}

TEST(EdidTest, readsWhatTellsMonitorsApart) {
    EXPECT_THAT(parseEdid(edid(0x01020304, "ABC123", "DELL U2720Q")),
                Optional(Eq(Edid{"DEL", 0xa0c1, 0x01020304, "ABC123", "DELL U2720Q"})));
    EXPECT_THAT(parseEdid(edid(7, "1234567890123", "")),
                Optional(Eq(Edid{"DEL", 0xa0c1, 7, "1234567890123", ""})));
}

TEST(EdidTest, whatIsNoEdidIsRefusedAndHostileTextIsTamed) {
    const Bytes whole = edid(1);
    Bytes noHeader = whole;
    noHeader[3] = 0;
    EXPECT_EQ(parseEdid({}), std::nullopt);
    EXPECT_EQ(parseEdid(std::span(whole).first(127)), std::nullopt);
    EXPECT_EQ(parseEdid(noHeader), std::nullopt);
    EXPECT_THAT(parseEdid(edid(1, "a\x01\x80\nrest", " \xff ")),
                Optional(Eq(Edid{"DEL", 0xa0c1, 1, "a", ""})));

    Bytes noise(256, 0xff);
    std::copy_n(whole.begin(), 8, noise.begin());
    EXPECT_THAT(parseEdid(noise), Optional(testing::Field(&Edid::maker, "???")));
}

TEST(OutputIdentityTest, aMonitorKeepsItsIdentityOnAnotherConnectorAndBesideOthers) {
    const auto alone = uuidsOf({{66, "DP-1", edid(1)}});
    const auto moved = uuidsOf({{70, "HDMI-2", edid(2)}, {71, "HDMI-1", edid(1)}});
    EXPECT_EQ(moved[1], alone[0]);
    EXPECT_NE(moved[0], moved[1]);
    EXPECT_EQ(alone[0].lowercaseString()[14], '5');
}

TEST(OutputIdentityTest, serialNumberAndSerialTextBothCount) {
    EXPECT_NE(uuidsOf({{1, "DP-1", edid(1, "A")}}), uuidsOf({{1, "DP-1", edid(1, "B")}}));
    EXPECT_NE(uuidsOf({{1, "DP-1", edid(1, "A")}}), uuidsOf({{1, "DP-1", edid(2, "A")}}));
}

TEST(OutputIdentityTest, twinsAndSilentMonitorsAreToldApartByTheirConnector) {
    const auto twins = uuidsOf({{1, "DP-1", edid(0)}, {2, "DP-2", edid(0)}, {3, "DP-3", edid(9)}});
    EXPECT_NE(twins[0], twins[1]);
    EXPECT_EQ(twins[2], uuidsOf({{8, "HDMI-1", edid(9)}})[0]);

    const auto silent = uuidsOf({{1, "VGA-1", {}}, {2, "VGA-2", Bytes(10)}});
    EXPECT_NE(silent[0], silent[1]);
    EXPECT_EQ(silent[0], uuidsOf({{5, "VGA-1", {}}})[0]);
}

TEST(OutputIdentityTest, aMonitorIsCalledByItsNameElseByItsModelElseByItsConnector) {
    EXPECT_EQ(outputName({1, "DP-1", edid(1, "", "DELL U2720Q")}), "DELL U2720Q");
    EXPECT_EQ(outputName({1, "DP-1", edid(1)}), "DEL A0C1");
    EXPECT_EQ(outputName({1, "DP-1", {}}), "DP-1");
}

}  // namespace
}  // namespace quillmar
