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

std::string describedAs(const Bytes& block) {
    return pluggedMonitors({{1, "DP-1", block, std::nullopt}}).front().description;
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

TEST(OutputIdentityTest, serialNumberAndSerialTextBothCountAndNothingElse) {
    EXPECT_EQ(describedAs(edid(1, "A", "one name")), describedAs(edid(1, "A", "another")));
    EXPECT_NE(describedAs(edid(1, "A")), describedAs(edid(1, "B")));
    EXPECT_NE(describedAs(edid(1, "A")), describedAs(edid(2, "A")));
    EXPECT_EQ(describedAs(Bytes(10)), "");
}

TEST(OutputIdentityTest, aMonitorIsCalledByItsNameElseByItsModelElseByItsConnector) {
    EXPECT_EQ(outputName({1, "DP-1", edid(1, "", "DELL U2720Q"), {}}), "DELL U2720Q");
    EXPECT_EQ(outputName({1, "DP-1", edid(1), {}}), "DEL A0C1");
    EXPECT_EQ(outputName({1, "DP-1", {}, {}}), "DP-1");
}

}  // namespace
}  // namespace quillmar
