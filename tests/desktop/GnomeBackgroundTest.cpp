#include "linux/desktop/GnomeBackground.h"

#include <gmock/gmock.h>

#include "base/Url.h"
#include "desktop/Desktop.h"
#include "desktop/WaitingLoop.h"

namespace quillmar {
namespace {

struct Family {
    const char* schema;
    std::vector<const char*> pictureKeys;
};
void PrintTo(const Family& family, std::ostream* out) { *out << family.schema; }

/// The desktops' real schemas, with settings that nobody else sees.
class GnomeBackgroundTest : public testing::TestWithParam<Family> {
protected:
    GnomeBackgroundTest() {
        for (const char* key : GetParam().pictureKeys) g_settings_reset(settings_.get(), key);
        g_settings_reset(settings_.get(), "picture-options");
        g_settings_set_string(settings_.get(), "primary-color", "#102030");
    }
    std::string placeOf(const std::filesystem::path& file, const char* key) const {
        return std::string_view(key) == "picture-filename" ? file.string() : Url::fromFilePath(file).string();
    }
    void userChooses(const std::filesystem::path& file, const char* layout) {
        for (const char* key : GetParam().pictureKeys) {
            g_settings_set_string(settings_.get(), key, placeOf(file, key).c_str());
        }
        g_settings_set_string(settings_.get(), "picture-options", layout);
    }
    std::string value(const char* key) const {
        return Owned<char>(g_settings_get_string(settings_.get(), key)).get();
    }
    SpannedDesktopPicturing::Present present() { return loop_.await(background_->present()); }

    WaitingLoop loop_;
    ThreadPool pool_{1};
    Ref<GSettings> settings_ = Ref<GSettings>::adopt(g_settings_new(GetParam().schema));
    std::unique_ptr<GnomeBackground> background_ =
        loop_.await(GnomeBackground::open(GetParam().schema, pool_));
};

TEST_P(GnomeBackgroundTest, aPictureLiesOverAllMonitorsAndTheUsersComesBack) {
    const DesktopImageOptions unset = present().options;
    userChooses("/home/a b.png", "zoom");
    const auto own = present();
    EXPECT_EQ(own.file, "/home/a b.png");
    EXPECT_EQ(own.color, (RgbColor{0x10, 0x20, 0x30}));
    for (const char* key : GetParam().pictureKeys) EXPECT_TRUE(own.options.contains(key));

    loop_.await(background_->set("/ours.png", std::nullopt));
    EXPECT_EQ(value("picture-options"), "spanned");
    for (const char* key : GetParam().pictureKeys) EXPECT_EQ(value(key), placeOf("/ours.png", key));
    EXPECT_EQ(present().file, "/ours.png");

    loop_.await(background_->set(own.file, own.options));
    EXPECT_EQ(present().options, own.options);
    EXPECT_EQ(present().file, own.file);
    loop_.await(background_->set("/any.png", unset));
    EXPECT_EQ(present().options, unset);
    const Owned<GVariant> user(g_settings_get_user_value(settings_.get(), "picture-options"));
    EXPECT_EQ(user, nullptr);
}

TEST_P(GnomeBackgroundTest, everyLayoutIsKnown) {
    using enum SpannedDesktopPicturing::Layout;
    const std::vector<std::pair<const char*, SpannedDesktopPicturing::Layout>> layouts{
        {"none", none},         {"centered", center}, {"wallpaper", tile}, {"scaled", fit},
        {"stretched", stretch}, {"zoom", fill},       {"spanned", spanned}};
    for (const auto& [word, layout] : layouts) {
        if (layout == none && GetParam().schema == std::string("org.mate.background"))
            continue;  // unknown there
        userChooses("/own.png", word);
        EXPECT_EQ(present().layout, layout) << word;
    }
}

TEST_P(GnomeBackgroundTest, aDesktopThatIsNotInstalledHasNone) {
    EXPECT_EQ(loop_.await(GnomeBackground::open("org.example.background", pool_)), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Families, GnomeBackgroundTest,
                         testing::Values(Family{"org.gnome.desktop.background",
                                                {"picture-uri", "picture-uri-dark"}},
                                         Family{"org.cinnamon.desktop.background", {"picture-uri"}},
                                         Family{"org.mate.background", {"picture-filename"}}));

}  // namespace
}  // namespace quillmar
