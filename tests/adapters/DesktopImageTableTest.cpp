#include "linux/x11/DesktopImageTable.h"

#include <gmock/gmock.h>

namespace quillmar {
namespace {

using testing::ElementsAre;
using Entry = DesktopImageTable::Entry;

constexpr PixelRect left{0, 0, 1920, 1080};
constexpr PixelRect right{1920, 0, 1280, 1024};
constexpr PixelRect both{0, 0, 3200, 1080};

TEST(DesktopImageTableTest, itsTextReadsBackWhateverTheFilesAreCalled) {
    const DesktopImageTable table{0x2a00001,
                                  {{left, "/home/a b/100%.png"}, {right, "/tmp/two\nlines é\xff.png"}}};
    EXPECT_EQ(DesktopImageTable::parse(table.text()), table);
    EXPECT_EQ(DesktopImageTable::parse(DesktopImageTable{}.text()), DesktopImageTable{});
}

TEST(DesktopImageTableTest, linesThatMakeNoSenseAreLeftOut) {
    const auto table = DesktopImageTable::parse(
        "pixmap 0x10\nnonsense\n\n10x20+1 file:///a\n10x20+1+2 http://host/a\n10x20+1+2file:///a\n"
        "99999999999999x20+1+2 file:///a\n10x20+1+2 file:///kept.png");
    EXPECT_EQ(table.pixmap, 0x10u);
    EXPECT_THAT(table.entries, ElementsAre(Entry{{1, 2, 10, 20}, "/kept.png"}));
    for (const char* text :
         {"", "pixmap", "pixmap 0x", "pixmap 0xfffffffff\n10x20+1+2 file:///a", "garbage"}) {
        EXPECT_EQ(DesktopImageTable::parse(text), DesktopImageTable{}) << text;
    }
}

TEST(DesktopImageTableTest, paintingForgetsWhatIsPaintedOverAndWhatIsCutOff) {
    const DesktopImageTable table =
        DesktopImageTable{1, {}}.painted(2, both, {left, "/a"}).painted(3, both, {right, "/b"});
    EXPECT_EQ(table.pixmap, 3u);
    EXPECT_THAT(table.entries, ElementsAre(Entry{left, "/a"}, Entry{right, "/b"}));
    EXPECT_EQ(table.fileAt(left), "/a");
    EXPECT_EQ(table.fileAt({0, 0, 1920, 1079}), std::nullopt);

    EXPECT_THAT(table.painted(4, both, {left, "/c"}).entries,
                ElementsAre(Entry{right, "/b"}, Entry{left, "/c"}));
    EXPECT_THAT(table.painted(4, both, {{0, 0, 2000, 1080}, "/c"}).entries,
                ElementsAre(Entry{{0, 0, 2000, 1080}, "/c"}));
    EXPECT_THAT(table.painted(4, {0, 0, 3199, 1080}, {left, "/c"}).entries, ElementsAre(Entry{left, "/c"}));
}

}  // namespace
}  // namespace quillmar
