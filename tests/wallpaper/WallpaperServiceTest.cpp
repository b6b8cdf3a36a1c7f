#include "wallpaper/WallpaperService.h"

#include "fakes/DesktopWorld.h"
#include "fakes/FakeRemoteImageProvider.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastUsedStamp.h"
#include "storage/StoredFileGrant.h"
#include "wallpaper/GeneratedWallpaper.h"
#include "wallpaper/StaticPictures.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::StartsWith;

struct WallpaperServiceTest : ::testing::Test, DesktopWorld {
    WallpaperApplicationGate gate;
    FakeRemoteImageProvider remoteImages{cacheFiles};
    WallpaperRenderer renderer{{.cacheDirectory = cache,
                                .rendering = rendering,
                                .desktop = *pictures,
                                .executor = executor,
                                .cacheFiles = cacheFiles,
                                .clock = clock}};
    PictureMemory memory{executor, folder.path() / "state", clock};
    StaticPictures staticPictures{{.desktop = *pictures,
                                   .writer = writer,
                                   .gate = gate,
                                   .renderer = renderer,
                                   .executor = executor,
                                   .cacheFiles = cacheFiles,
                                   .remoteImages = remoteImages,
                                   .memory = memory,
                                   .randomIndex = [](std::size_t) { return std::size_t{0}; }}};
    WallpaperService service{displays, *pictures, gate, {&staticPictures}};

    WallpaperApplyRequest request(WallpaperMode mode, std::size_t display = 0) {
        return {displays.displays().at(display), std::move(mode)};
    }
    WallpaperApplyRequest solid(std::size_t display, std::string color) {
        return request({SolidColorPresentationSettings{std::move(color)}}, display);
    }
    /// A picture that was not shown before.
    WallpaperApplyRequest image(const std::string& name, std::string background = "#000000") {
        return request({ImagePresentationSettings{.imageURL = Url::fromFilePath(put(name)),
                                                  .backgroundHexColor = std::move(background)}});
    }
    std::string apply(WallpaperApplyRequest wanted, WallpaperApplyOutcome* outcome = nullptr) {
        return run(service.apply(std::move(wanted)), outcome);
    }
    std::string source() const { return rendering.lastSource.filename().string(); }
    std::string gone(std::uint32_t screen) const {
        return "The display with ID " + id(screen) + " is no longer connected.";
    }
};

TEST_F(WallpaperServiceTest, aColourIsMadeForItsDisplayAloneAndUsedAgain) {
    EXPECT_EQ(apply(solid(0, " #1f6f8b ")), "done");
    EXPECT_EQ(shown(1), "solid-display-00000000-0000-0000-0000-000000000001-1920x1080-1F6F8B.png");
    EXPECT_EQ(shown(2), "");
    EXPECT_EQ(desktop.pixels[1]->row(7)[2], 0x1f) << "red";
    EXPECT_EQ(apply(solid(0, "1F6F8B")), "done");
    EXPECT_EQ(desktop.setCount, 1) << "it is shown";
    desktop.shown[1] = "/of/another/program.png";
    EXPECT_EQ(apply(solid(0, "1F6F8B")), "done");
    EXPECT_EQ(rendering.written, 1);
    EXPECT_EQ(rendering.loaded, 1) << "from the cache";
    EXPECT_EQ(desktop.setCount, 2);
    EXPECT_TRUE(desktop.options[1].empty());
}

TEST_F(WallpaperServiceTest, aPictureIsDrawnOnceShownFromItsPixelsAndWrittenBehind) {
    writing.runsAtOnce = false;
    EXPECT_EQ(apply(image("holiday.jpg", " #00ff80\n")), "done");
    EXPECT_THAT(shown(1), StartsWith("image-v2-display-00000000-0000-0000-0000-000000000001-1920x1080-fit-"
                                     "00FF80-"));
    EXPECT_FALSE(fs::exists(desktop.shown[1]));
    EXPECT_FALSE(cacheFiles.removeIfFree(resolvedPath(desktop.shown[1])))
        << "nobody sweeps what will be there";
    EXPECT_EQ(rendering.lastComposition.background, (RgbColor{0, 255, 128}));
    writing.releaseAll();
    loop.settle();
    EXPECT_TRUE(fs::exists(desktop.shown[1]));
    EXPECT_EQ(apply(image("holiday.jpg", "#00FF80")), "done");
    EXPECT_EQ(rendering.rendered, 2) << "the file was written again, so it is another picture";
    loop.advance(std::chrono::hours(1));
    desktop.shown.clear();
    writing.runsAtOnce = true;
    writing.releaseAll();
    loop.settle();
    const int before = rendering.rendered;
    const WallpaperApplyRequest same = request({ImagePresentationSettings{
        .imageURL = Url::fromFilePath(folder.path() / "holiday.jpg"), .backgroundHexColor = "#00FF80"}});
    EXPECT_EQ(apply(same), "done");
    EXPECT_EQ(rendering.rendered, before);
    const fs::path file = desktop.shown[1];
    EXPECT_EQ(lastUsedStamp(file).value_or(clock.now()), clock.now()) << "or the file system has no stamps";

    // What is damaged is made again: cut off, or whole with pixels that do not decode.
    desktop.shown.clear();
    fs::resize_file(file, fs::file_size(file) - 1);
    EXPECT_EQ(apply(same), "done");
    EXPECT_EQ(rendering.rendered, before + 1);
    for (const bool takesPixels : {true, false}) {
        desktop.wantsPixels = takesPixels;
        desktop.shown.clear();
        rendering.damaged.insert(file);
        const int drawn = rendering.rendered;
        EXPECT_EQ(apply(same), "done");
        EXPECT_EQ(rendering.rendered, drawn + 1) << takesPixels;
        rendering.damaged.clear();
    }
    EXPECT_EQ(apply(image("holiday.jpg", "teal")), "done");
    EXPECT_TRUE(shown(1).contains("-TEAL-"));
    EXPECT_EQ(rendering.lastComposition.background, RgbColor{});
}

TEST_F(WallpaperServiceTest, whatCannotBeShownIsNamedWithItsReasonAndTouchesNothing) {
    using Case = PictureRenderingError::Case;
    const std::string picture = (folder.path() / "a.jpg").string();
    const auto failing = [&](std::optional<Case> failure) {
        rendering.failure = failure;
        return apply(image("a.jpg"));
    };
    EXPECT_EQ(failing(Case::failed), "Quillmar could not render the selected image for this display.");
    EXPECT_EQ(failing(Case::unreadable), "Quillmar cannot read the selected image at " + picture + ".");
    EXPECT_EQ(failing(Case::decoderFailed), "The reader of the image at " + picture + " ended unexpectedly.");
    EXPECT_EQ(apply(solid(0, "#12345")), "#12345 is not a valid six-digit hex color.");
    EXPECT_EQ(apply(request({ColorFaderPresentationSettings{}})),
              "Add at least two colors to the color fader.");
    EXPECT_EQ(apply(request({WebpagePresentationSettings{.urlString = "https://example.org"}})),
              "This wallpaper mode is not available yet.");
    fs::remove_all(folder.path() / "Cache");
    std::ofstream(folder.path() / "Cache") << "a file in the way";
    EXPECT_EQ(apply(solid(0, "#123456")),
              "Quillmar could not create its wallpaper cache at " + cache.string() + ": Not a directory.");
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, aDesktopThatWantsFilesIsGivenOneThatIsThere) {
    desktop.wantsPixels = false;
    EXPECT_EQ(apply(solid(0, "#123456")), "done");
    EXPECT_TRUE(fs::exists(desktop.shown[1]));
    rendering.writeError = std::errc::no_space_on_device;
    EXPECT_EQ(apply(solid(1, "#123456")),
              "Quillmar could not save the generated wallpaper at " +
                  (cache / solidColorFileName(displays.displays()[1], {1280, 1024}, "123456")).string() +
                  ": No space left on device.");
    EXPECT_EQ(shown(2), "");
}

TEST_F(WallpaperServiceTest, aDisplayThatIsUnpluggedWhileItsPictureIsDrawnFailsAlone) {
    rendering.hold();
    const WallpaperApplyRequest wanted = image("a.jpg");
    const auto outcome = outcomeOf(loop, tasks, service.apply(wanted));
    screens.unplug(1);
    rendering.letThrough();
    loop.settle();
    EXPECT_EQ(outcome->text, gone(1));
    EXPECT_EQ(rendering.written, 1) << "what was made is not made twice";
    EXPECT_EQ(apply(wanted), gone(1));
    EXPECT_EQ(rendering.rendered, 1) << "not even drawn";
}

TEST_F(WallpaperServiceTest, aRequestWhoseOwnerDiesWhileItsPictureIsDrawnSetsNothing) {
    rendering.hold();
    {
        TaskScope owner(loop);
        owner.start(service.apply(image("a.jpg")));
        loop.settle();
    }
    rendering.letThrough();
    loop.settle();
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, underTheLockScreenThePictureIsMadeButNotSet) {
    gate.isLockScreenOverrideActive = true;
    EXPECT_EQ(apply(solid(0, "#123456")),
              "The wallpaper request was skipped while the Lock Screen override was active.");
    EXPECT_EQ(rendering.written, 1);
    EXPECT_EQ(run(service.recallDesktop(id(1))), "done");
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, preparingTouchesNothingAndThePreparedIsSetWithoutDrawing) {
    PreparedWallpaperApplication prepared;
    EXPECT_EQ(run(service.prepare(solid(1, "#123456")), &prepared), "done");
    EXPECT_EQ(desktop.setCount, 0);
    EXPECT_EQ(run(service.applyPrepared(std::move(prepared))), "done");
    EXPECT_EQ(shown(2), "solid-display-00000000-0000-0000-0000-000000000002-1280x1024-123456.png");
    desktop.shown[1] = "/home/ana/holiday.jpg";
    EXPECT_EQ(apply(request({})), "done");
    EXPECT_EQ(shown(1), "holiday.jpg") << "a disabled display keeps what it shows";
}

TEST_F(WallpaperServiceTest, nothingInTheCacheCanBeSweptWhileAPictureIsPrepared) {
    const fs::path other = put("Cache/GeneratedWallpapers/other.png");
    for (const bool fails : {false, true}) {
        rendering.hold();
        rendering.failure.reset();
        if (fails) rendering.failure = PictureRenderingError::Case::failed;
        const auto prepared = outcomeOf(loop, tasks, service.prepare(image(fails ? "b.jpg" : "a.jpg")));
        EXPECT_EQ(prepared->text, "waiting");
        EXPECT_FALSE(cacheFiles.removeIfFree(resolvedPath(other)));
        rendering.letThrough();
        loop.settle();
        EXPECT_TRUE(cacheFiles.removeIfFree(resolvedPath(other))) << "whether it fails or not";
        put("Cache/GeneratedWallpapers/other.png");
    }
}

/// A live kind: the lines that it writes are what a person would see.
class Live final : public WallpaperPresenting {
public:
    std::vector<std::string> lines;
    bool fails = false;

    bool presents(WallpaperModeKind kind) const override { return kind == WallpaperModeKind::webpage; }
    Task<std::unique_ptr<WallpaperPresentation>> prepare(WallpaperApplyRequest request) override {
        struct Page final : WallpaperPresentation {
            Page(Live& owner, std::string name) : live(owner), name(std::move(name)) {}
            ~Page() override { live.lines.push_back(name + " stopped"); }
            Task<WallpaperApplyOutcome> present() override {
                if (live.fails) throw std::runtime_error("it did not load");
                live.lines.push_back(name + " shown");
                co_return WallpaperApplyOutcome{};
            }
            Live& live;
            std::string name;
        };
        co_return std::make_unique<Page>(*this,
                                         std::get<WebpagePresentationSettings>(request.mode.value).urlString);
    }
};

TEST_F(WallpaperServiceTest, whatADisplayShowedBeforeStopsOnceTheNewIsUp) {
    Live live;
    WallpaperService both{displays, *pictures, gate, {&staticPictures, &live}};
    const auto page = [&](const std::string& address) {
        return request({WebpagePresentationSettings{.urlString = address}});
    };
    run(both.apply(page("http://a")));
    live.fails = true;
    EXPECT_EQ(run(both.apply(page("http://b"))), "it did not load");
    EXPECT_THAT(live.lines, ElementsAre("http://a shown", "http://b stopped"));
    live.fails = false;
    run(both.apply(page("http://c")));
    desktop.refuses(1, "no");
    run(both.apply(solid(0, "#123456")));
    EXPECT_THAT(live.lines,
                ElementsAre("http://a shown", "http://b stopped", "http://c shown", "http://a stopped"));
    desktop.accepts(1);
    run(both.apply(solid(0, "#123456")));
    EXPECT_EQ(live.lines.back(), "http://c stopped");
}

TEST_F(WallpaperServiceTest, theProgramsOwnCopyOfAnImageComesFirstAndAGrantFindsARenamedOne) {
    ImagePresentationSettings chosen{.imageURL = Url::fromFilePath(put("chosen.jpg"))};
    chosen.imageBookmark = makeStoredFileGrant(folder.path() / "chosen.jpg");
    fs::rename(folder.path() / "chosen.jpg", folder.path() / "renamed.jpg");
    apply(request({chosen}));
    EXPECT_EQ(source(), "renamed.jpg");
    chosen.cachedImageURL = Url::fromFilePath(put("copy.jpg"));
    apply(request({chosen}));
    EXPECT_EQ(source(), "copy.jpg");
    EXPECT_EQ(apply(request({ImagePresentationSettings{}})), "Choose an image for this mode.");
    for (const std::string address : {"file:///gone/holiday.jpg", "https://example.org/holiday.jpg"}) {
        const Url url = Url::parse(address).value();
        EXPECT_EQ(apply(request({ImagePresentationSettings{.imageURL = url}})),
                  "Quillmar cannot read the selected image at " + url.displayPath() + ".");
    }
}

TEST_F(WallpaperServiceTest, aSlideshowGoesOnFromItsLastImageAndSaysWhichItChose) {
    put("show/1.jpg");
    const Url second = Url::fromFilePath(put("show/2.jpg"));
    SlideshowPresentationSettings slideshow;
    slideshow.folderURL = Url::fromFilePath(folder.path() / "show");
    slideshow.rotationIntervalSeconds = 60;
    WallpaperApplyOutcome outcome;
    apply(request({slideshow}), &outcome);
    EXPECT_EQ(source(), "1.jpg");
    slideshow.lastImageURL = outcome.selectedSlideshowImageURL;
    apply(request({slideshow}), &outcome);
    EXPECT_EQ(source(), "2.jpg");
    EXPECT_EQ(outcome.selectedSlideshowImageURL, second);
    slideshow.folderBookmark = makeStoredFileGrant(folder.path() / "show");
    fs::rename(folder.path() / "show", folder.path() / "moved");
    apply(request({slideshow}));
    EXPECT_EQ(source(), "1.jpg") << "the folder was found, its last image is at another place";
    rendering.failure = PictureRenderingError::Case::decoderFailed;
    outcome = {};
    fs::remove_all(cache);
    EXPECT_THAT(apply(request({slideshow}), &outcome), StartsWith("Every image in "));
    rendering.failure.reset();
    EXPECT_EQ(apply(request({slideshow})), "done") << "the decoder was ended, the files are pictures";
}

TEST_F(WallpaperServiceTest, aFileOfASlideshowThatIsNoPictureIsPassedOverAndSaidOnceUntilItIsChanged) {
    put("show/1.jpg");
    const fs::path broken = put("show/2.jpg");
    put("show/3.jpg");
    rendering.noPictures.insert(broken);
    SlideshowPresentationSettings slideshow;
    slideshow.folderURL = Url::fromFilePath(folder.path() / "show");
    std::string seen;
    std::size_t leftOut = 0;
    for (int i = 0; i < 5; ++i) {
        WallpaperApplyOutcome outcome;
        ASSERT_EQ(apply(request({slideshow}), &outcome), "done");
        slideshow.lastImageURL = outcome.selectedSlideshowImageURL;
        seen += slideshow.lastImageURL.value().filePath().value().filename().string()[0];
        leftOut += outcome.leftOut.size();
        if (i != 2) continue;
        rendering.noPictures.clear();
        fs::last_write_time(broken, fs::last_write_time(broken) + std::chrono::seconds(1));
    }
    EXPECT_EQ(seen, "13123");
    EXPECT_EQ(leftOut, 1u);
}

struct WallpaperServiceRemoteTest : WallpaperServiceTest {
    void SetUp() override { remoteImages.image = resolvedPath(put("remote-1.jpg")); }
    WallpaperApplyRequest remote(WallpaperApplyReason reason = WallpaperApplyReason::userInitiated) {
        WindowsSpotlightSettings settings;
        settings.layout = ImagePresentationLayout::stretch;
        return {displays.displays()[0], WallpaperMode{settings}, reason};
    }
};

TEST_F(WallpaperServiceRemoteTest, aServicesPictureIsDrawnAsItsModeSaysAndWithItsCaption) {
    remoteImages.caption = "NASA EPIC";
    EXPECT_EQ(apply(remote()), "done");
    EXPECT_EQ(rendering.lastSource, remoteImages.image);
    EXPECT_EQ(rendering.lastComposition.destination, (PixelRect{0, 0, 1920, 1080}));
    ASSERT_TRUE(rendering.lastComposition.caption);
    EXPECT_EQ(rendering.lastComposition.caption->text, "NASA EPIC");
    apply(remote(WallpaperApplyReason::rotation));
    EXPECT_THAT(remoteImages.calls, ElementsAre("windowsSpotlight " + id(1) + " stays wallpaper",
                                                "windowsSpotlight " + id(1) + " advances wallpaper"));
    remoteImages.failure = std::make_exception_ptr(std::runtime_error("no network"));
    EXPECT_EQ(apply(remote()), "no network");
    EXPECT_EQ(desktop.setCount, 1);
}

TEST_F(WallpaperServiceRemoteTest, theSourceIsKeptWhileItIsDrawnAndLongerOnlyWhenItIsToBeRemembered) {
    const fs::path source = remoteImages.image;
    rendering.hold();
    const auto prepared = outcomeOf(loop, tasks, service.prepare(remote()));
    EXPECT_EQ(prepared->text, "waiting");
    EXPECT_FALSE(cacheFiles.removeIfFree(source));
    rendering.letThrough();
    loop.settle();
    remoteImages.selection = WindowsSpotlightSelection{.imageURL = Url::fromFilePath(source)};
    WallpaperApplyOutcome outcome;
    EXPECT_EQ(apply(remote(), &outcome), "done");
    EXPECT_EQ(outcome.windowsSpotlightSelection, remoteImages.selection);
    EXPECT_FALSE(cacheFiles.removeIfFree(source));
    outcome = {};
    EXPECT_TRUE(cacheFiles.removeIfFree(source));
}

TEST_F(WallpaperServiceRemoteTest, aDisplayThatIsUnpluggedWhileItsServiceAnswersFailsAlone) {
    remoteImages.hold();
    const auto outcome = outcomeOf(loop, tasks, service.apply(remote()));
    screens.unplug(1);
    remoteImages.letThrough();
    loop.settle();
    EXPECT_EQ(outcome->text, gone(1));
    EXPECT_EQ(desktop.setCount, 0);
}

}  // namespace
}  // namespace quillmar
