#include "app/WallpaperCommand.h"

#include "app/WallpaperModeArguments.h"
#include "app/WallpaperStatus.h"
#include "fakes/DesktopWorld.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/FakeWallpaperApplier.h"

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
    WallpaperCoordinator coordinator{loop, displays, applier, &transactions, model, gate, clock};
    WallpaperRotationCoordinator rotation{loop, notifications, model, coordinator, clock};
    WallpaperCommand command{{.settingsModel = model,
                              .coordinator = coordinator,
                              .rotation = rotation,
                              .clock = clock,
                              .version = "1.2.3",
                              .displays = displays,
                              .desktop = *pictures,
                              .grantFor = [](Url) -> Task<std::optional<Bytes>> { co_return Bytes{1, 2}; },
                              .readKey = [](std::filesystem::path file) -> Task<std::string> {
                                  co_return "key of " + file.string();
                              }}};

    void SetUp() override {
        for (const std::uint32_t number : {1u, 2u}) applier.shown[FakeScreens::displayID(number)] = "before";
    }
    ControlReply answer(Words arguments) {
        const auto outcome = outcomeOf(loop, tasks, command.run({std::move(arguments), "/home/ana"}));
        return outcome->value.value_or(ControlReply{.status = 1, .errors = outcome->text});
    }
    const WallpaperMode& modeOf(std::uint32_t number) const {
        return findEntry(model.settings().wallpaper.displays, FakeScreens::displayID(number))->mode;
    }
};

TEST_F(WallpaperCommandTest, aModeIsSetSavedAndAnsweredForTheDisplayThatWasNamed) {
    const ControlReply reply =
        answer({"wallpaper", "set", "screen 2", "image", "../holiday.jpg", "--layout", "fill"});
    EXPECT_EQ(reply.status, 0) << reply.errors;
    EXPECT_EQ(reply.output, "Screen 2: applied\n");
    const auto& image = std::get<ImagePresentationSettings>(modeOf(2).value);
    EXPECT_EQ(image.imageURL, Url::fromFilePath("/home/holiday.jpg"));
    EXPECT_EQ(image.imageBookmark, (Bytes{1, 2}));
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

TEST_F(WallpaperCommandTest, aServicesKeyComesFromAFile) {
    EXPECT_EQ(answer({"wallpaper", "set", "main", "unsplash", "--accessKeyFile", "../key"}).status, 0);
    const auto key = [this] { return std::get<UnsplashSettings>(modeOf(1).value).accessKey; };
    EXPECT_EQ(key(), "key of /home/ana/../key");
    answer({"wallpaper", "set", "main", "bing"});
    EXPECT_EQ(answer({"wallpaper", "set", "main", "unsplash", "--filter", "topic"}).status, 0);
    EXPECT_EQ(key(), "key of /home/ana/../key") << "nobody types it twice";
    EXPECT_EQ(answer({"wallpaper", "set", "main", "unsplash", "--accessKey="}).status, 0);
    EXPECT_EQ(key(), "");
}

TEST_F(WallpaperCommandTest, theStatusSaysWhenADisplayChangesAndWhatFailedLast) {
    answer({"wallpaper", "set", "main", "bing"});
    rotation.start();
    applier.settingFails(FakeScreens::displayID(1), "bing");
    loop.advance(std::chrono::seconds(1800 + 10));
    EXPECT_EQ(answer({"status"}).output, "Quillmar 1.2.3\n* Screen 1 (" + FakeScreens::displayID(1) +
                                             "): bing\n    changes in 20 s, failed 1x in a row\n    failed: "
                                             "cannot set\n  Screen 2 (" +
                                             FakeScreens::displayID(2) + "): disabled\n");
    const std::string json = answer({"status", "--json"}).output;
    EXPECT_THAT(json, HasSubstr("\"waitSeconds\": 20"));
    EXPECT_THAT(json, HasSubstr("\"nextAttempt\": \"2026-05-04T09:30:30Z\""));
    EXPECT_THAT(json, HasSubstr("\"message\": \"cannot set\""));
    answer({"wallpaper", "set", "main", "colour", "#112233"});
    EXPECT_THAT(answer({"status"}).output, Not(HasSubstr("failed")));
    EXPECT_EQ(answer({"status", "--xml"}).status, 2);
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
                  "): solidColor #112233\n    shows /cache/a.png\n  Screen 2 (" + FakeScreens::displayID(2) +
                  "): unsplash\n");
    const std::string json = answer({"wallpaper", "--json"}).output;
    EXPECT_THAT(json, HasSubstr("\"accessKey\": \"[redacted]\""));
    EXPECT_THAT(json, Not(HasSubstr("tell-nobody")));
}

TEST(WallpaperModeArgumentsTest, whatIsNotUnderstoodIsSaid) {
    const auto complaint = [](Words words) -> std::string {
        try {
            parseWallpaperMode(words, "/");
            return "understood";
        } catch (const UsageError& error) {
            return error.what();
        }
    };
    const std::vector<std::pair<Words, std::string>> rows = {
        {{}, "What the display should show was not said."},
        {{"picture"}, "There is no kind of wallpaper \"picture\"."},
        {{"colour"}, "\"colour\" needs a colour such as #1F6F8B."},
        {{"colour", "red", "green"}, "\"colour\" does not take \"green\"."},
        {{"image"}, "\"image\" needs a file."},
        {{"image", "a", "--layout"}, "\"image\" needs a layout behind --layout."},
        {{"image", "a", "--layout", "zoom"},
         "There is no layout \"zoom\": choose center, tile, stretch, fit or fill."},
        {{"slideshow", "a", "--interval", "1h"}, "\"1h\" is not a number of seconds."},
        {{"slideshow", "a", "--random"}, "\"slideshow\" does not take \"--random\"."},
        {{"mode", "{\"solidColor\":{\"_0\":{}}}"},
         "The mode cannot be read: solidColor._0.hexColor: missing key"},
        {{"disabled", "now"}, "\"disabled\" does not take \"now\"."},
        {{"mode", "{\"disabled\":{}}"}, "understood"},
        {{"slideshow", "a", "--interval", "60", "--shuffle", "--subfolders", "--background", "#000000"},
         "understood"},
        {{"apod", "MY-KEY"}, "Only options stand behind the name of a service."},
        {{"apod", "--apikey=MY-KEY"}, "\"apod\" does not take \"--apikey\"."},
        {{"apod", "--apiKey"}, "\"--apiKey\" needs a value."},
        {{"bing", "--apiKeyFile", "f"}, "\"bing\" does not take \"--apiKeyFile\"."},
        {{"apod", "--useHDImage=maybe"}, "\"--useHDImage\" is true or false."},
        {{"nasa-epic", "--recentDays", "2.5"}, "\"--recentDays\" needs a whole number."},
        {{"museums", "--sources", "rijksmuseum,louvre"},
         "\"--sources\" is one of artInstituteChicago, metropolitanMuseum, rijksmuseum, clevelandMuseum, "
         "smkDenmark, smithsonian."},
        {{"spotlight", "--lastSelection", "x"}, "\"spotlight\" does not take \"--lastSelection\"."},
    };
    for (const auto& [words, text] : rows) EXPECT_EQ(complaint(words), text);
}

TEST(WallpaperModeArgumentsTest, optionsOfAServiceSetTheFieldsThatTheyAreCalledAs) {
    const auto parse = [](Words words) { return parseWallpaperMode(words, "/home/ana").mode.value; };
    EXPECT_EQ(std::get<APODSettings>(parse({"apod"})), APODSettings{});
    EXPECT_EQ(std::get<WallhavenSettings>(
                  parse({"wallhaven", "--includeAnime", "--includeGeneral=false", "--sorting", "toplist",
                         "--color", "660000", "--ratios", "16x9,4x3", "--interval", "60"})),
              (WallhavenSettings{.includeGeneral = false,
                                 .includeAnime = true,
                                 .sorting = WallhavenSorting::toplist,
                                 .color = "660000",
                                 .ratios = {"16x9", "4x3"},
                                 .rotationIntervalSeconds = 60}));
    EXPECT_EQ(
        std::get<MuseumsSettings>(parse({"museums", "--sources=smkDenmark", "--layout", "fill"})),
        (MuseumsSettings{.sources = {MuseumsSource::smkDenmark}, .layout = ImagePresentationLayout::fill}));
    EXPECT_EQ(parseWallpaperMode(Words{"unsplash", "--accessKeyFile", "key"}, "/home/ana").keyFile,
              "/home/ana/key");
}

}  // namespace
}  // namespace quillmar
