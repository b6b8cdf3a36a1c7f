#include "desktop/SpannedDesktop.h"

#include "base/Files.h"
#include "fakes/DesktopWorld.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Layout = SpannedDesktopPicturing::Layout;

/// A desktop that shows the user's photograph on all its screens until it is told otherwise.
class FakeSpannedDesktop final : public SpannedDesktopPicturing {
public:
    Present shown{"/home/ana/photo.jpg", {{"picture-options", "'zoom'"}}, Layout::fill, {0, 0, 255}};
    bool isLocked = false;

    Task<Present> present() override { co_return shown; }
    Task<void> set(fs::path file, std::optional<DesktopImageOptions> options) override {
        if (isLocked) throw DesktopPictureError(DesktopPictureError::Case::locked, "picture-uri", "");
        shown.file = file;
        shown.layout = options ? Layout::fill : Layout::spanned;
        shown.options = options.value_or(DesktopImageOptions{{"picture-options", "'spanned'"}});
        co_return;
    }
};

/// Keeps the last picture that was written, to be looked at.
class KeepingEncoder final : public PictureEncoding {
public:
    mutable std::map<fs::path, std::pair<PixelSize, Bytes>> pictures;
    void writePng(const PixelBuffer& picture, const fs::path& target) const override {
        pictures[target] = {picture.size(), Bytes(picture.bytes().begin(), picture.bytes().end())};
        writeFileAtomically(target, "a picture");
    }
};

struct SpannedDesktopTest : ::testing::Test, DesktopWorld {
    FakeSpannedDesktop spanned;
    KeepingEncoder encoder;
    fs::path composedFolder = folder.path() / "Desktop";
    std::optional<SpannedDesktop> both;

    void SetUp() override {
        spanned.shown.file = put("photo.jpg");
        begin();
    }
    /// As the next process would.
    void begin() {
        both.emplace(SpannedDesktop::Services{.desktop = spanned,
                                              .root = desktop,
                                              .screens = screens,
                                              .rendering = rendering,
                                              .encoding = encoder,
                                              .executor = executor,
                                              .folder = composedFolder});
    }
    Screen screen(std::uint32_t number) const {
        for (Screen each : screens.screens()) {
            if (each.number == number) return each;
        }
        return {};
    }
    std::string set(std::uint32_t number, const std::string& name, RgbColor color) {
        const PixelRect area = screen(number).area;
        auto pixels = std::make_shared<PixelBuffer>(
            PixelSize{static_cast<int>(area.width), static_cast<int>(area.height)});
        pixels->fill(color);
        return run(both->setDesktopImage({put(name), pixels}, screen(number), {}));
    }
    PresentDesktopImage present(std::uint32_t number) {
        PresentDesktopImage result;
        run(both->desktopImage(screen(number)), &result);
        return result;
    }
    /// Blue, green, red at a place of the picture that the desktop shows.
    Bytes at(std::size_t x, std::size_t y) const {
        const auto& [size, bytes] = encoder.pictures.at(spanned.shown.file);
        const std::size_t offset = (y * static_cast<std::size_t>(size.width) + x) * PixelBuffer::pixelBytes;
        return {bytes[offset], bytes[offset + 1], bytes[offset + 2]};
    }
};

TEST_F(SpannedDesktopTest, eachMonitorHasItsPartAndOneWithoutAPictureOfOursKeepsTheUsers) {
    EXPECT_EQ(set(2, "two.png", {200, 100, 50}), "done");
    EXPECT_EQ(encoder.pictures.at(spanned.shown.file).first, (PixelSize{3200, 1080}));
    EXPECT_EQ(at(2000, 10), (Bytes{50, 100, 200}));
    EXPECT_EQ(at(2000, 1050), (Bytes{255, 0, 0})) << "the desktop's colour where no monitor is";
    EXPECT_EQ(rendering.lastSource.filename(), "photo.jpg");
    EXPECT_EQ(rendering.lastComposition.canvas, (PixelSize{1920, 1080}));
    EXPECT_EQ(present(1).file, folder.path() / "photo.jpg");
    EXPECT_EQ(present(2).file, folder.path() / "two.png");

    begin();
    EXPECT_EQ(set(1, "one.png", {1, 2, 3}), "done");
    EXPECT_EQ(at(5, 5), (Bytes{3, 2, 1}));
    EXPECT_EQ(rendering.loaded, 1) << "the other monitor's, as the last process left it";
    EXPECT_EQ(present(2).file, folder.path() / "two.png");

    DesktopImageOptions options;
    spanned.isLocked = true;
    const fs::path shown = spanned.shown.file;
    EXPECT_THAT(set(1, "three.png", {4, 5, 6}), HasSubstr("picture-uri"));
    EXPECT_TRUE(fs::exists(shown));
    EXPECT_EQ(present(1).file, folder.path() / "one.png");
    spanned.isLocked = false;

    for (const std::uint32_t number : {1u, 2u}) {
        run(both->setDesktopImage({folder.path() / "photo.jpg", nullptr}, screen(number),
                                  {{"picture-options", "'zoom'"}}));
    }
    EXPECT_EQ(spanned.shown.file, folder.path() / "photo.jpg");
    EXPECT_EQ(spanned.shown.options.at("picture-options"), "'zoom'");
    EXPECT_FALSE(fs::exists(shown)) << "nothing composed is left";
}

TEST_F(SpannedDesktopTest, whatTheUserChoosesMeanwhileIsWhatAllMonitorsShow) {
    set(1, "one.png", {1, 2, 3});
    spanned.shown = {put("beach.jpg"), {{"picture-options", "'scaled'"}}, Layout::fit, {}};
    EXPECT_EQ(present(1).file, folder.path() / "beach.jpg");
    EXPECT_FALSE(present(1).isForgotten);
    DesktopImageOptions options;
    run(both->desktopImageOptions(screen(1)), &options);
    EXPECT_EQ(options.at("picture-options"), "'scaled'");
    set(2, "two.png", {4, 5, 6});
    EXPECT_EQ(rendering.lastSource.filename(), "beach.jpg");
}

TEST_F(SpannedDesktopTest, monitorsThatAreMovedNeedAnotherPicture) {
    set(1, "one.png", {1, 2, 3});
    EXPECT_FALSE(present(1).isForgotten);
    screens.unplug(2);
    screens.plugIn(2, {1920, 56, 1280, 1024});
    EXPECT_TRUE(present(1).isForgotten);
    EXPECT_FALSE(present(2).isForgotten) << "nothing of ours was there";
    rendering.damaged.insert(folder.path() / "one.png");
    set(2, "two.png", {4, 5, 6});
    EXPECT_TRUE(present(1).isForgotten) << "its part could not be had";
    EXPECT_FALSE(present(2).isForgotten);
}

TEST_F(SpannedDesktopTest, aPictureOfTheUsersThatCannotBeDrawnIsItsColour) {
    rendering.failure = PictureRenderingError::Case::unreadable;
    EXPECT_EQ(set(2, "two.png", {200, 100, 50}), "done");
    EXPECT_EQ(at(10, 10), (Bytes{255, 0, 0}));
    spanned.shown.layout = Layout::none;
    EXPECT_FALSE(ownPartComposer(Layout::none, {}, {}, {}));
}

}  // namespace
}  // namespace quillmar
