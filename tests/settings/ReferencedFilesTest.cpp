#include "settings/ReferencedFiles.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;

std::optional<Url> at(const char* path) { return Url::fromFilePath(path); }

TEST(ReferencedFilesTest, everyFileOfTheChosenAndOfTheSavedModesIsReferredTo) {
    AppSettings settings;
    auto& wallpaper = settings.wallpaper.displays.emplace_back();
    wallpaper.mode.value = ImagePresentationSettings{.imageURL = at("/1"), .cachedImageURL = at("/2")};
    wallpaper.savedModes[WallpaperModeKind::video].value =
        VideoPlaybackSettings{.videoURL = at("/3"), .cachedVideoURL = at("/4")};
    wallpaper.savedModes[WallpaperModeKind::matrix].value = MatrixPresentationSettings{
        .imageURL = at("/2"), .cachedImageURL = at("/5"), .cachedVideoURL = at("/6")};
    settings.wallpaper.displays.emplace_back().mode.value = PDFPresentationSettings{.cachedPDFURL = at("/7")};

    auto& lockScreen = settings.lockScreen.displays.emplace_back();
    WindowsSpotlightSettings spotlight;
    spotlight.lastSelection = WindowsSpotlightSelection{.imageURL = *at("/8")};
    lockScreen.mode.value = spotlight;
    lockScreen.savedModes[LockScreenModeKind::slideshow].value =
        SlideshowPresentationSettings{.folderURL = at("/9"), .lastImageURL = at("/9/a b")};

    auto& screensaver = settings.screensaver.displays.emplace_back();
    AlarmClockScreensaverSettings alarm;
    alarm.sound.customSoundURL = at("/A");
    screensaver.mode.value = alarm;
    screensaver.savedModes[ManagedScreensaverModeKind::videoPlaylist].value =
        VideoPlaylistPlaybackSettings{.folderURL = Url::parse("https://example.org/videos")};

    EXPECT_THAT(referencedFiles(settings),
                ElementsAre("/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8", "/9", "/9/a b", "/A"));
}

}  // namespace
}  // namespace quillmar
