#include "linux/desktop/SpannedDesktopPicture.h"

#include <gmock/gmock.h>

#include "base/Url.h"
#include "desktop/Desktop.h"
#include "linux/picture/PngReader.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

constexpr RgbColor red{200, 10, 20};
constexpr RgbColor blue{10, 20, 200};
constexpr RgbColor green{20, 180, 40};
constexpr RgbColor around{0x10, 0x20, 0x30};

struct Family {
    const char* desktop;
    const char* schema;
    std::vector<const char*> pictureKeys;
};
void PrintTo(const Family& family, std::ostream* out) { *out << family.desktop; }

/// The desktops' real schemas, with settings that nobody else sees.
class SpannedDesktopPictureTest : public testing::TestWithParam<Family> {
protected:
    SpannedDesktopPictureTest() {
        for (const char* key : GetParam().pictureKeys) g_settings_reset(settings_.get(), key);
        g_settings_reset(settings_.get(), "picture-options");
        g_settings_set_string(settings_.get(), "primary-color", "#102030");
    }
    std::unique_ptr<SpannedDesktopPicture> newPicture() {
        return std::make_unique<SpannedDesktopPicture>(BackgroundSettings::open(GetParam().desktop), folder_,
                                                       root_);
    }
    void userChooses(const std::filesystem::path& file, const char* layout) {
        for (const char* key : GetParam().pictureKeys) {
            const bool isPath = std::string_view(key) == "picture-filename";
            g_settings_set_string(settings_.get(), key,
                                  isPath ? file.c_str() : Url::fromFilePath(file).string().c_str());
        }
        g_settings_set_string(settings_.get(), "picture-options", layout);
    }
    std::filesystem::path shownFile(const char* key = GetParam().pictureKeys.front()) const {
        const Owned<char> text(g_settings_get_string(settings_.get(), key));
        const auto url = Url::parse(text.get());
        return url && url->isFileURL() ? url->filePath().value() : std::filesystem::path(text.get());
    }
    std::string layout() const {
        return Owned<char>(g_settings_get_string(settings_.get(), "picture-options")).get();
    }
    std::vector<RgbColor> shownAt(const std::vector<std::pair<std::size_t, int>>& places) const {
        PngReader reader(shownFile(), PngReader::PixelOrder::redGreenBlueUnused);
        EXPECT_EQ(reader.width(), 3200);
        EXPECT_EQ(reader.height(), 1080);
        Bytes row(static_cast<std::size_t>(reader.width()) * 4);
        std::vector<RgbColor> colors(places.size());
        for (int y = 0; y < reader.height(); ++y) {
            reader.readRow(row);
            for (std::size_t i = 0; i < places.size(); ++i) {
                const auto pixel = &row[places[i].first * 4];
                if (places[i].second == y) colors[i] = {pixel[0], pixel[1], pixel[2]};
            }
        }
        return colors;
    }
    /// Of the left monitor, of the right one, of where no monitor is.
    std::vector<RgbColor> shown() const { return shownAt({{1919, 1079}, {1920, 1023}, {1920, 1024}}); }
    std::size_t pictureCount() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            count += entry.path().extension() == ".png";
        }
        return count;
    }

    Desktop desktop_;
    std::filesystem::path folder_ = desktop_.folder() / "composed";
    Ref<GSettings> settings_ = Ref<GSettings>::adopt(g_settings_new(GetParam().schema));
    X11DesktopPicture root_{desktop_.folder() / "captures"};
    std::unique_ptr<SpannedDesktopPicture> picture_ = newPicture();
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
};

TEST_P(SpannedDesktopPictureTest, allMonitorsPicturesBecomeOneThatTheNextProcessKnows) {
    const auto leftFile = desktop_.solidPicture(1920, 1080, red);
    const auto rightFile = desktop_.solidPicture(1280, 1024, blue);
    picture_->setDesktopImage(leftFile, left_, {});
    picture_->setDesktopImage(rightFile, right_, {});
    EXPECT_THAT(shown(), testing::ElementsAre(red, blue, around));
    EXPECT_EQ(layout(), "spanned");
    for (const char* key : GetParam().pictureKeys) EXPECT_EQ(shownFile(key), shownFile()) << key;
    EXPECT_EQ(pictureCount(), 1u);

    picture_ = newPicture();
    EXPECT_EQ(picture_->desktopImage(left_), leftFile);
    EXPECT_EQ(picture_->desktopImage(right_), rightFile);
    EXPECT_EQ(picture_->desktopImageOptions(right_), DesktopImageOptions());
    picture_->setDesktopImage(desktop_.solidPicture(1280, 1024, green), right_, {});
    EXPECT_THAT(shown(), testing::ElementsAre(red, green, around));
    EXPECT_EQ(pictureCount(), 1u);
}

TEST_P(SpannedDesktopPictureTest, aMonitorWithoutOursShowsTheUsersPictureAndBothGetItBack) {
    const auto own = desktop_.solidPicture(300, 200, green);
    userChooses(own, "zoom");
    const auto options = picture_->desktopImageOptions(left_);
    EXPECT_EQ(picture_->captureDesktopImage(left_), own);
    picture_->setDesktopImage(desktop_.solidPicture(1920, 1080, red), left_, {});
    EXPECT_THAT(shown(), testing::ElementsAre(red, green, around));
    EXPECT_EQ(picture_->captureDesktopImage(right_), own);
    EXPECT_EQ(picture_->desktopImageOptions(right_), options);
    picture_->setDesktopImage(desktop_.solidPicture(1280, 1024, blue), right_, {});

    picture_->setDesktopImage(own, left_, options);
    EXPECT_THAT(shown(), testing::ElementsAre(green, blue, around));
    picture_->setDesktopImage(own, right_, options);
    EXPECT_EQ(shownFile(), own);
    EXPECT_EQ(layout(), "zoom");
    EXPECT_EQ(pictureCount(), 0u);
}

TEST_P(SpannedDesktopPictureTest, theUsersLayoutsAreKeptWhereTheUsersPictureStays) {
    const auto own = desktop_.solidPicture(640, 512, green);
    // In the middle, in the corner, left of the middle of the right monitor.
    const std::vector<std::pair<std::size_t, int>> places{{1920 + 640, 512}, {1920, 0}, {1920 + 10, 512}};
    const std::vector<std::pair<const char*, std::vector<RgbColor>>> layouts{
        {"none", {around, around, around}},   {"centered", {green, around, around}},
        {"wallpaper", {green, green, green}}, {"scaled", {green, green, green}},
        {"stretched", {green, green, green}}, {"spanned", {green, green, green}},
    };
    for (const auto& [name, colors] : layouts) {
        if (name == std::string("none") && GetParam().desktop == std::string("MATE"))
            continue;  // unknown there
        userChooses(own, name);
        picture_->setDesktopImage(desktop_.solidPicture(1920, 1080, red), left_, {});
        EXPECT_EQ(shownAt(places), colors) << name;
    }
}

TEST_P(SpannedDesktopPictureTest, whatTheUserChoosesLaterCounts) {
    picture_->setDesktopImage(desktop_.solidPicture(1920, 1080, red), left_, {});
    const auto chosen = desktop_.solidPicture(300, 200, green);
    userChooses(chosen, "stretched");
    EXPECT_EQ(picture_->desktopImage(left_), chosen);
    picture_->setDesktopImage(desktop_.solidPicture(1280, 1024, blue), right_, {});
    EXPECT_THAT(shown(), testing::ElementsAre(green, blue, around));
}

TEST_P(SpannedDesktopPictureTest, aMonitorThatIsPluggedInAgainIsComposedAgain) {
    picture_->setDesktopImage(desktop_.solidPicture(1280, 1024, blue), right_, {});
    desktop_.arrange("--output DUMMY1 --off");
    picture_->setDesktopImage(desktop_.solidPicture(1920, 1080, red), left_, {});
    desktop_.arrange("--output DUMMY1 --mode 1280x1024 --pos 1920x0");
    picture_->recallDesktopImage(right_);
    EXPECT_THAT(shown(), testing::ElementsAre(red, blue, around));
    const auto composed = shownFile();
    picture_->recallDesktopImage(left_);
    EXPECT_EQ(shownFile(), composed) << "it is whole already";
}

TEST_P(SpannedDesktopPictureTest, aBadFileChangesNothing) {
    picture_->setDesktopImage(desktop_.solidPicture(1920, 1080, red), left_, {});
    const auto before = shownFile();
    const auto bad = desktop_.folder() / "bad.png";
    std::filesystem::copy_file("/proc/self/exe", bad);
    for (const auto& file : {bad, desktop_.folder() / "none.png"}) {
        EXPECT_THROW(picture_->setDesktopImage(file, right_, {}), std::runtime_error) << file;
    }
    EXPECT_EQ(shownFile(), before);
    EXPECT_TRUE(std::filesystem::exists(before));
    EXPECT_EQ(pictureCount(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Families, SpannedDesktopPictureTest,
    testing::Values(Family{"GNOME", "org.gnome.desktop.background", {"picture-uri", "picture-uri-dark"}},
                    Family{"X-Cinnamon", "org.cinnamon.desktop.background", {"picture-uri"}},
                    Family{"MATE", "org.mate.background", {"picture-filename"}}));

}  // namespace
}  // namespace quillmar
