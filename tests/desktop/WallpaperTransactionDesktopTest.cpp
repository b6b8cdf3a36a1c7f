#include <gmock/gmock.h>

#include "desktop/TransactionWorld.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

TEST(WallpaperTransactionDesktopTest, aDisplayThatFailsGetsBackToThePixelWhatAnotherProgramPainted) {
    Desktop desktop;
    X11DesktopPicture picture(desktop.folder() / "captures");
    TransactionWorld world(desktop, picture);
    ASSERT_EQ(runProgram("hsetroot -add '#ff0000' -add '#00ff80' -gradient 35 >/dev/null"), 0);
    const auto before = desktop.pixels(1920, 0, 1280, 1024);
    const auto result = world.applies({"#102030", "#A0B0C0"});
    ASSERT_EQ(result.applied.size(), 1u);
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_THAT(result.rollbackFailures, testing::IsEmpty());
    EXPECT_EQ(errorText(result.failures[0].error, GeneralLanguage::english), "the screen flickered");
    EXPECT_THAT(desktop.pixels(0, 0, 1920, 1080), testing::Each(RgbColor{0x10, 0x20, 0x30}));
    EXPECT_TRUE(desktop.pixels(1920, 0, 1280, 1024) == before);

    world.applies({"#102030", "#A0B0C0"});
    EXPECT_THAT(desktop.pixels(1920, 0, 1280, 1024), testing::Each(RgbColor{0xA0, 0xB0, 0xC0}));
}

}  // namespace
}  // namespace quillmar
