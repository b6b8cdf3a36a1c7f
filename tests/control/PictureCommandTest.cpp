#include "control/PictureCommand.h"

#include "control/ChangeStream.h"
#include "fakes/FakeAddresses.h"
#include "fakes/FakeControlChannel.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/ProgramServices.h"
#include "fakes/WallpaperProgram.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

/// Everything between a command and the desktop.
struct PictureCommandTest : ::testing::Test, DesktopWorld {
    TemporaryFolder home;  ///< of the user, who has pictures elsewhere
    EventBus notifications;
    FakeSettingsStore store;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    WallpaperProgram chain{*this, notifications, model};
    FakeRemoteImageProvider& remoteImages = chain.remoteImages;
    PictureMemory& memory = chain.memory;
    WallpaperCoordinator& coordinator = chain.coordinator;
    ProgramServices program{loop, clock, model};
    WallpaperCommand wallpapers{{.settingsModel = model,
                                 .coordinator = coordinator,
                                 .rotation = chain.rotation,
                                 .clock = clock,
                                 .version = "1.2.3",
                                 .displays = displays,
                                 .desktop = *pictures,
                                 .pictures = memory,
                                 .loginItem = program.loginItem,
                                 .updates = program.updates,
                                 .files = executor}};
    FakeAddresses addresses;
    PictureCommand command{{.settingsModel = model,
                            .coordinator = coordinator,
                            .displays = displays,
                            .pictures = memory,
                            .addresses = addresses,
                            .files = executor,
                            .environment = {{"HOME", folder.path()}}}};
    FakeControlChannel channel;
    ChangeStream changes{{.loop = loop,
                          .notifications = notifications,
                          .settingsModel = model,
                          .wallpapers = wallpapers,
                          .channel = channel,
                          .version = "1.2.3"}};
    EventBus::Observation following =
        coordinator.observeChanges([this](const std::string& display) { changes.displayDidChange(display); });

    void SetUp() override {
        run(memory.load());
        desktop.shown = {{1, own("before.jpg")}, {2, own("before.jpg")}};
    }
    fs::path own(const std::string& name) const {
        std::ofstream(home.path() / name) << "a picture";
        return home.path() / name;
    }
    ControlReply answer(Words words) {
        const CommandLine line = CommandLine::parse(words);
        const auto outcome = outcomeOf(
            loop, tasks,
            PictureCommand::carriesOut(line) ? command.run(line) : wallpapers.run(line, folder.path()));
        return outcome->value.value_or(ControlReply{.status = 1, .errors = outcome->text});
    }
    ControlReply wallpaper(const std::string& verb, const std::string& display = "main") {
        return answer({"wallpaper", verb, display});
    }
    void showsSlideshow(std::vector<std::string> names) {
        for (const std::string& name : names) put("show/" + name);
        EXPECT_EQ(answer({"wallpaper", "set", "main", "slideshow", "show", "--interval", "60"}).status, 0);
    }
    /// The file that the first display shows, by its name.
    std::string now() const {
        const ShownPicture* picture = memory.history().current(id(1));
        return picture && picture->fileURL ? picture->fileURL->filePath()->filename().string() : "none";
    }
    std::vector<std::string> after(const std::string& verb, int times) {
        std::vector<std::string> seen;
        for (int i = 0; i < times; ++i) {
            const std::string complaint = wallpaper(verb).errors;
            seen.push_back(complaint.empty() ? now() : complaint);
        }
        return seen;
    }
};

TEST_F(PictureCommandTest, formerPicturesAreWalkedBackAndForthAndTheGoneOnesPassedOver) {
    showsSlideshow({"1.jpg", "2.jpg", "3.jpg"});
    const std::string one = shown(1);
    EXPECT_THAT(after("next", 2), ElementsAre("2.jpg", "3.jpg"));
    EXPECT_THAT(after("previous", 3),
                ElementsAre("2.jpg", "1.jpg", "Screen 1: There is no earlier picture.\n"));
    EXPECT_EQ(shown(1), one) << "the same canvas";
    EXPECT_THAT(after("next", 3), ElementsAre("2.jpg", "3.jpg", "1.jpg"));
    fs::remove(folder.path() / "show/2.jpg");
    EXPECT_THAT(after("previous", 2), ElementsAre("3.jpg", "1.jpg"));
    EXPECT_EQ(wallpaper("previous", "screen 2").errors, "Screen 2: There is no earlier picture.\n");
    desktop.refuses(1, "no");
    EXPECT_THAT(wallpaper("next").errors, HasSubstr("Screen 1: "));
    EXPECT_EQ(now(), "1.jpg") << "what is shown";
}

TEST_F(PictureCommandTest, aFileThatIsNoPictureIsPassedOverAndSaidOnce) {
    rendering.noPictures = {put("show/2.jpg"), put("show/2b.jpg"), put("show/4.jpg")};
    showsSlideshow({"1.jpg", "3.jpg"});
    EXPECT_THAT(after("next", 3), ElementsAre("3.jpg", "1.jpg", "3.jpg"));
    const std::string status = answer({"status"}).output;
    const std::string sentence =
        "    left out: Quillmar cannot read the selected image at " + (folder.path() / "show/2.jpg").string();
    const std::size_t first = status.find(sentence);
    ASSERT_NE(first, std::string::npos) << status;
    EXPECT_EQ(status.find(sentence, first + 1), std::string::npos);
    EXPECT_THAT(status, Not(HasSubstr("failed")));
    rendering.noPictures.clear();
    fs::last_write_time(put("show/2.jpg"), fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_THAT(after("next", 2), ElementsAre("1.jpg", "2.jpg")) << "it was mended";
}

TEST_F(PictureCommandTest, whatIsInTheTrashDoesNotComeAgain) {
    showsSlideshow({"1.jpg", "2.jpg", "3.jpg"});
    EXPECT_EQ(wallpaper("trash").output, (folder.path() / "show/1.jpg").string() + ": in the trash\n");
    EXPECT_EQ(now(), "2.jpg");
    EXPECT_THAT(after("next", 3), ElementsAre("3.jpg", "2.jpg", "3.jpg"));
    for (const std::string& name : after("previous", 3)) EXPECT_NE(name, "1.jpg");
    wallpaper("trash");
    const ControlReply last = wallpaper("trash");
    EXPECT_EQ(last.status, 1);
    EXPECT_THAT(last.errors, HasSubstr("is in the trash or cannot be read."));
    EXPECT_TRUE(fs::exists(folder.path() / "show/1.jpg"));
    answer({"wallpaper", "set", "main", "image", "show/1.jpg"});
    EXPECT_EQ(now(), "1.jpg") << "chosen by its name";
    EXPECT_EQ(wallpaper("trash").errors,
              "Screen 1 shows a file that was chosen for it: give it another wallpaper.\n");
}

TEST_F(PictureCommandTest, aServiceIsAskedOnUntilItsPictureIsNotInTheTrash) {
    const auto bing = [this] { answer({"wallpaper", "set", "main", "bing"}); };
    remoteImages.image = put("remote-1.jpg");
    bing();
    remoteImages.further = {remoteImages.image, remoteImages.image, put("remote-2.jpg")};
    EXPECT_EQ(wallpaper("trash").errors, "");
    EXPECT_EQ(now(), "remote-2.jpg");
    answer({"wallpaper", "set", "main", "colour", "#112233"});
    bing();
    const ControlReply reply = wallpaper("trash");
    EXPECT_EQ(reply.errors, "Screen 1: The service has only pictures that are in the trash.\n");
    EXPECT_EQ(reply.status, 0) << "it went back to the one before";
    EXPECT_EQ(memory.history().current(id(1))->color, "#112233");
}

TEST_F(PictureCommandTest, aPictureIsExplainedOpenedAndKept) {
    EXPECT_EQ(wallpaper("open").errors, "Quillmar shows no picture of a file there.");
    remoteImages.image = put("remote-1.webp");
    remoteImages.credit = {.title = "Sea", .author = "Ann", .sourceURL = "https://a.b/c", .licence = "CC0"};
    answer({"wallpaper", "set", "main", "museums"});
    EXPECT_THAT(
        wallpaper("info").output,
        HasSubstr("    title: Sea\n    author: Ann\n    licence: CC0\n    source: https://a.b/c\n    file: " +
                  remoteImages.image.string() + "\n    since: "));
    EXPECT_THAT(answer({"status"}).output, HasSubstr("    that is: Sea, Ann, CC0, https://a.b/c\n"));
    EXPECT_THAT(answer({"wallpaper", "info", "all", "--json"}).output, HasSubstr("\"author\": \"Ann\""));
    EXPECT_EQ(wallpaper("open").output, "https://a.b/c\n");
    remoteImages.credit.sourceURL = "javascript:alert(1)";
    wallpaper("next");
    addresses.isRefusing = true;
    EXPECT_THAT(wallpaper("open").errors, HasSubstr("No program of this desktop opens "));
    EXPECT_THAT(addresses.opened,
                ElementsAre("https://a.b/c", Url::fromFilePath(remoteImages.image).string()));
    EXPECT_THAT(wallpaper("favourite").output, HasSubstr(": copied\n"));
    EXPECT_THAT(wallpaper("favourite").output, HasSubstr(": was there already\n"));
    fs::remove_all(folder.path() / "Pictures");
    put("Pictures");
    const ControlReply refused = wallpaper("favourite");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("Not a directory"));
    remoteImages.caption = "Sea, by Ann";
    answer({"wallpaper", "set", "main", "museums"});
    answer({"wallpaper", "set", "main", "colour", "#112233"});
    fs::remove_all(cache);
    wallpaper("previous");
    ASSERT_TRUE(rendering.lastComposition.caption);
    EXPECT_EQ(rendering.lastComposition.caption->text, "Sea, by Ann");
}

TEST_F(PictureCommandTest, aDisplayThatIsNoLongerOursGetsBackWhatItShowedBefore) {
    const auto disable = [this] { answer({"wallpaper", "set", "main", "disabled"}); };
    const auto color = [this] { answer({"wallpaper", "set", "main", "colour", "#112233"}); };
    color();
    answer({"wallpaper", "set", "main", "colour", "#445566"});
    restart();
    run(coordinator.enqueue(std::nullopt, WallpaperApplyReason::userInitiated));
    EXPECT_NE(shown(1), "before.jpg");
    disable();
    EXPECT_EQ(shown(1), "before.jpg");
    EXPECT_EQ(wallpaper("previous").errors, "Screen 1: There is no earlier picture.\n");
    color();
    desktop.shown[1] = own("chosen meanwhile.jpg");
    disable();
    EXPECT_EQ(shown(1), "chosen meanwhile.jpg");
    color();
    fs::remove(home.path() / "chosen meanwhile.jpg");
    const std::string ours = shown(1);
    disable();
    EXPECT_EQ(shown(1), ours) << "what is gone cannot come back";
    const fs::path captured = put("Cache/GeneratedWallpapers/captured-1.png");
    desktop.shown[1] = captured;
    for (int time = 0; time < 2; ++time) {
        color();
        fs::remove(captured);
        disable();
        EXPECT_EQ(desktop.shown[1], folder.path() / "Desktop/Former/captured-1.png")
            << "a copy that is not swept";
    }
}

TEST_F(PictureCommandTest, whoFollowsIsToldOfEachChangeOnceAndNeverWaitedFor) {
    const auto events = [this] {
        std::vector<std::string> names;
        for (const ControlEvent& event : std::exchange(channel.told, {})) names.push_back(event.name);
        return names;
    };
    showsSlideshow({"1.jpg", "2.jpg"});
    EXPECT_THAT(events(), ElementsAre("status", "display"));
    wallpaper("next");
    ASSERT_EQ(channel.told.size(), 1u);
    EXPECT_THAT(channel.told[0].json, HasSubstr("\"event\":\"display\",\"format\":1"));
    EXPECT_THAT(channel.told[0].json, HasSubstr("show/2.jpg"));
    EXPECT_THAT(channel.told[0].json, Not(HasSubstr(id(2))));
    EXPECT_THAT(channel.told[0].json, Not(HasSubstr("\n")));
    events();
    channel.hold();
    for (int i = 0; i < 1000; ++i) wallpaper("next");
    model.update([](AppSettings& settings) {
        settings.general.pauseRotations = true;
        settings.wallpaper.displays.push_back(
            {.displayID = id(2), .mode = {UnsplashSettings{.accessKey = "tell-nobody"}}});
    });
    loop.settle();
    EXPECT_THAT(events(), ElementsAre("display"));
    channel.letThrough();
    loop.settle();
    EXPECT_THAT(channel.told.back().json, HasSubstr("\"areRotationsPaused\":true"));
    EXPECT_THAT(channel.told.back().json, HasSubstr("\"accessKey\":\"[redacted]\""));
    EXPECT_THAT(events(), ElementsAre("status"));
    desktop.refuses(1, "no");
    put("show/3.jpg");
    wallpaper("next");
    EXPECT_THAT(channel.told.back().text, HasSubstr("failed: "));
    events();
    changes.displayDidChange("display:gone meanwhile");
    loop.settle();
    EXPECT_THAT(events(), ElementsAre());
}

}  // namespace
}  // namespace quillmar
