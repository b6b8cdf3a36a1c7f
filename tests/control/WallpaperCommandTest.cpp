#include "control/WallpaperCommand.h"

#include <fstream>

#include "control/DisplayList.h"
#include "fakes/DesktopWorld.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/FakeWallpaperApplier.h"
#include "fakes/ProgramServices.h"

namespace quillmar {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

struct WallpaperCommandTest : ::testing::Test, DesktopWorld {
    EventBus notifications;
    FakeSettingsStore store;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    FakeWallpaperApplier applier;
    WallpaperSettingsTransactionService transactions{applier};
    WallpaperApplicationGate gate;
    PictureMemory memory{executor, folder.path() / "state", clock};
    WallpaperCoordinator coordinator{loop, displays, applier, &transactions, model, memory, gate, clock};
    WallpaperRotationCoordinator rotation{loop, notifications, model, coordinator, clock};
    ProgramServices program{loop, clock, model};
    WallpaperCommand command{{.settingsModel = model,
                              .coordinator = coordinator,
                              .rotation = rotation,
                              .clock = clock,
                              .version = "1.2.3",
                              .displays = displays,
                              .desktop = *pictures,
                              .pictures = memory,
                              .loginItem = program.loginItem,
                              .updates = program.updates,
                              .files = executor}};

    void SetUp() override {
        std::filesystem::create_directory(folder.path() / "ana");
        for (const std::uint32_t number : {1u, 2u}) applier.shown[FakeScreens::displayID(number)] = "before";
    }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(folder.path() / name) << text;
    }
    ControlReply answer(Words arguments) {
        const auto outcome =
            outcomeOf(loop, tasks, command.run(CommandLine::parse(arguments), folder.path() / "ana"));
        return outcome->value.value_or(ControlReply{.status = 1, .errors = outcome->text});
    }
    const WallpaperMode& modeOf(std::uint32_t number) const {
        return findEntry(model.settings().wallpaper.displays, FakeScreens::displayID(number))->mode;
    }
};

TEST_F(WallpaperCommandTest, aModeIsSetSavedAndAnsweredForTheDisplayThatWasNamed) {
    write("holiday.jpg", "");
    const ControlReply reply =
        answer({"wallpaper", "set", "screen 2", "image", "../holiday.jpg", "--layout", "fill"});
    EXPECT_EQ(reply.status, 0) << reply.errors;
    EXPECT_EQ(reply.output, "Screen 2: applied\n");
    const auto& image = std::get<ImagePresentationSettings>(modeOf(2).value);
    EXPECT_EQ(image.imageURL, Url::fromFilePath(folder.path() / "holiday.jpg"));
    EXPECT_TRUE(image.imageBookmark);
    EXPECT_EQ(image.layout, ImagePresentationLayout::fill);
    EXPECT_EQ(store.onDisk.wallpaper, model.settings().wallpaper);

    EXPECT_EQ(answer({"wallpaper", "set", "all", "color", "#112233"}).output,
              "Screen 1: applied\nScreen 2: applied\n");
    EXPECT_TRUE(findEntry(model.settings().wallpaper.displays, FakeScreens::displayID(2))
                    ->savedModes.contains(WallpaperModeKind::image))
        << "what was set up before is kept";
    EXPECT_EQ(answer({"wallpaper", "set", "main", "disabled"}).status, 0);
    EXPECT_EQ(modeOf(1).kind(), WallpaperModeKind::disabled);
}

TEST_F(WallpaperCommandTest, aServicesKeyComesFromAFileAndStaysUntilAnotherIsNamed) {
    write("key", " from a file\n");
    const auto keyAfter = [this](Words kind) {
        kind.insert(kind.begin(), {"wallpaper", "set", "main"});
        const ControlReply reply = answer(kind);
        EXPECT_EQ(reply.status, 0) << reply.errors;
        return std::get<UnsplashSettings>(modeOf(1).value).accessKey;
    };
    const auto json = [](const std::string& key) {
        return "{\"unsplash\":{\"_0\":{\"accessKey\":\"" + key +
               "\",\"filter\":\"topic\",\"topicSlug\":\"a\",\"username\":\"\",\"searchQuery\":\"\","
               "\"switchAutomatically\":false,\"rotationIntervalSeconds\":9,\"layout\":\"fit\","
               "\"backgroundHexColor\":\"#000000\",\"showsAttribution\":true}}}";
    };
    EXPECT_EQ(keyAfter({"unsplash", "--accessKeyFile", "../key"}), "from a file");
    answer({"wallpaper", "set", "main", "bing"});
    EXPECT_EQ(keyAfter({"unsplash", "--filter", "topic"}), "from a file") << "nobody types it twice";
    EXPECT_EQ(keyAfter({"mode", json("[redacted]")}), "from a file") << "as the program prints a mode";
    EXPECT_EQ(keyAfter({"mode", json("typed")}), "typed");
    EXPECT_EQ(keyAfter({"unsplash", "--accessKey="}), "");
    EXPECT_THAT(answer({"wallpaper", "set", "main", "unsplash", "--accessKeyFile", "none"}).errors,
                HasSubstr("cannot be read: No such file or directory."));
}

TEST_F(WallpaperCommandTest, theStatusSaysWhenADisplayChangesAndWhatFailedLast) {
    answer({"wallpaper", "set", "main", "bing"});
    rotation.start();
    applier.settingFails(FakeScreens::displayID(1), "bing");
    loop.advance(std::chrono::seconds(1800 + 10));
    EXPECT_EQ(answer({"status"}).output,
              "Quillmar 1.2.3\n* Screen 1 (" + FakeScreens::displayID(1) +
                  "): Bing Image of the Day\n    changes in 20 s, failed 1x in a row\n    failed: "
                  "cannot set\n  Screen 2 (" +
                  FakeScreens::displayID(2) + "): Disabled\n");
    const std::string json = answer({"status", "--json"}).output;
    EXPECT_THAT(json, HasSubstr("\"waitSeconds\": 20"));
    EXPECT_THAT(json, HasSubstr("\"nextAttempt\": \"2026-05-04T09:30:30Z\""));
    EXPECT_THAT(json, HasSubstr("\"message\": \"cannot set\""));
    answer({"wallpaper", "set", "main", "colour", "#112233"});
    EXPECT_THAT(answer({"status"}).output, Not(HasSubstr("failed")));
    model.update([](AppSettings& settings) { settings.general.language = GeneralLanguage::portuguese; });
    EXPECT_THAT(answer({"status"}).output, HasSubstr("Cor sólida #112233"));
}

TEST_F(WallpaperCommandTest, aDisplayThatFailsIsNamedAndTheStatusSaysSo) {
    applier.settingFails(FakeScreens::displayID(2), "#112233");
    const ControlReply reply = answer({"wallpaper", "set", "all", "colour", "#112233"});
    EXPECT_EQ(reply.status, 1);
    EXPECT_EQ(reply.output, "Screen 1: applied\n");
    EXPECT_EQ(reply.errors, "Screen 2: cannot set\n");
    EXPECT_EQ(applier.shown[FakeScreens::displayID(2)], "before");
}

TEST_F(WallpaperCommandTest, aWrongDisplayIsASentenceAndChangesNothing) {
    EXPECT_EQ(answer({"wallpaper", "set", "Beamer", "colour", "#112233"}).errors,
              "No display \"Beamer\" is connected.");
    screens.add({.number = 3, .uuid = Uuid::random(), .localizedName = "Screen 1"});
    EXPECT_EQ(answer({"wallpaper", "next", "Screen 1"}).errors,
              "Several displays are called \"Screen 1\"; use an ID.");
    EXPECT_TRUE(store.saves.empty());
}

TEST_F(WallpaperCommandTest, theListHoldsWhatEachDisplayIsSetToAndShowsButNoKeys) {
    answer({"wallpaper", "set", "main", "colour", "#112233"});
    model.update([](AppSettings& settings) {
        DisplayWallpaperSettings entry{.displayID = FakeScreens::displayID(2)};
        entry.mode.value = UnsplashSettings{.accessKey = "tell-nobody"};
        settings.wallpaper.displays.push_back(entry);
    });
    desktop.shown[1] = "/cache/a.png";
    EXPECT_EQ(answer({"wallpaper"}).output,
              "* Screen 1 (" + FakeScreens::displayID(1) +
                  "): Solid Color #112233\n    shows /cache/a.png\n  Screen 2 (" + FakeScreens::displayID(2) +
                  "): Unsplash\n");
    const std::string json = answer({"wallpaper", "--json"}).output;
    EXPECT_THAT(json, HasSubstr("\"version\": \"1.2.3\""));
    EXPECT_THAT(json, HasSubstr("\"accessKey\": \"[redacted]\""));
    EXPECT_THAT(json, Not(HasSubstr("tell-nobody")));
}

TEST(DisplayListTest, displaysAreListedALineEach) {
    const std::vector<DisplayInfo> displays = {
        {"display:a", "Left", {0, 0, 1920, 1080}, {}, 2, true},
        {"display:b", "Right one", {-1280, 56, 1280, 1024}, {}, 1.5, false}};
    EXPECT_EQ(displaysAsText(displays, GeneralLanguage::portuguese),
              "* display:a  Left       1920x1080+0+0  escala 2\n"
              "  display:b  Right one  1280x1024-1280+56  escala 1.5\n");
}

}  // namespace
}  // namespace quillmar
