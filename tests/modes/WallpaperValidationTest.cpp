#include <cmath>
#include <limits>

#include "base/Enum.h"
#include "modes/LockScreenSettings.h"
#include "modes/WallpaperSettings.h"

using namespace testing;

namespace quillmar {
namespace {

const auto english = GeneralLanguage::english;
const auto portuguese = GeneralLanguage::portuguese;

bool readableBelowOk(const std::filesystem::path& file) { return file.string().starts_with("/ok/"); }

template <class Settings>
WallpaperMode changed(Settings settings, auto change) {
    change(settings);
    return {settings};
}

/// The default settings of a kind with a change.
template <class Settings>
WallpaperMode with(auto change) {
    if constexpr (requires { Settings::standard(); }) {
        return changed(Settings::standard(), change);
    } else {
        return changed(Settings{}, change);
    }
}

std::string problem(const WallpaperMode& mode) {
    const auto error = mode.validationError(readableBelowOk);
    return error ? error->message(english) : "";
}

Url url(std::string_view text) { return *Url::parse(text); }

std::vector<ColorFaderStop> stops(std::size_t count) {
    return std::vector<ColorFaderStop>(count, ColorFaderStop{Uuid(), "#123456"});
}

struct Row {
    WallpaperMode mode;
    std::string problem;
};

void expectProblems(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(problem(row.mode), row.problem);
}

TEST(WallpaperValidationTest, localModesSayWhatIsMissingOrWrong) {
    using Fader = ColorFaderPresentationSettings;
    using Slideshow = SlideshowPresentationSettings;
    const std::string fadeText = "Set the color fade duration between one second and 23:59:59.";
    expectProblems({
        {with<SolidColorPresentationSettings>([](auto& s) { s.hexColor = "#1234567"; }),
         "#1234567 is not a valid six-digit hex color."},
        {with<SolidColorPresentationSettings>([](auto& s) { s.hexColor = "é1234"; }),
         "é1234 is not a valid six-digit hex color."},
        {with<Fader>([](auto& s) { s.colors = stops(1); }), "Add at least two colors to the color fader."},
        {with<Fader>([](auto& s) { s.colors = stops(11); }), "The color fader supports up to 10 colors."},
        {with<Fader>([](auto& s) { s.colors[2].hexColor = "red"; }),
         "red is not a valid six-digit color fader color."},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = 0.5; }), fadeText},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = 86400; }), fadeText},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = INFINITY; }), fadeText},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = std::nan(""); }), fadeText},
        {with<ImagePresentationSettings>([](auto& s) { s.cachedImageURL = url("file:///ok/a.png"); }),
         "Choose an image for this mode."},
        {WallpaperMode{Slideshow{}}, "Choose an image folder before applying this slideshow."},
        {with<Slideshow>([](auto& s) {
             s.folderURL = url("file:///ok");
             s.rotationIntervalSeconds = 0;
         }),
         "Set the slideshow interval between one second and 23:59:59."},
        {WallpaperMode{VideoPlaylistPlaybackSettings{}},
         "Choose a video folder before applying this playlist."},
        {with<HexellsPresentationSettings>([](auto& s) { s.automaticChangeIntervalSeconds = 0; }),
         "Set the Hexells automatic change interval between one second and 23:59:59."},
    });
}

TEST(WallpaperValidationTest, pictureServicesSayWhatIsMissingOrWrong) {
    const auto unsplash = [](auto change) {
        return with<UnsplashSettings>([&](auto& s) {
            s.accessKey = "k";
            change(s);
        });
    };
    const auto epic = [](double seconds, int days) {
        return with<NasaEpicSettings>([&](auto& s) {
            s.presentation = NasaEpicPresentation::rotateThroughDays;
            s.secondsPerObservation = seconds;
            s.recentDays = days;
        });
    };
    const std::string interval = "Set the automatic switch interval between one second and 23:59:59.";
    const std::string filter = "Enter a topic, user, or search term for Unsplash.";
    const std::string observation = "Set the NASA EPIC observation duration between 10 and 86399 seconds.";
    const std::string days = "Choose between 1 and 7 recent days for NASA EPIC.";
    const auto periodic = [](auto& s) {
        s.switchAutomatically = true;
        s.rotationIntervalSeconds = 0;
    };
    expectProblems({
        {with<APODSettings>([](auto& s) {
             s.switchPeriodically = true;
             s.rotationIntervalSeconds = 86400;
         }),
         interval},
        {epic(9.9, 1), observation},
        {epic(86400, 1), observation},
        {epic(10, 0), days},
        {epic(10, 8), days},
        {with<WallhavenSettings>([](auto& s) { s.includeGeneral = s.includeSafe = false; }),
         "Choose at least one Wallhaven category."},
        {with<WallhavenSettings>([](auto& s) { s.includeSafe = false; }),
         "Choose at least one Wallhaven purity level."},
        {with<WallhavenSettings>([](auto& s) {
             s.includeNSFW = true;
             s.apiKey = " \n";
         }),
         "Enter a Wallhaven API key to use the NSFW category."},
        {with<WallhavenSettings>(periodic), interval},
        {WallpaperMode{UnsplashSettings{}}, "Enter an Unsplash access key for this mode."},
        {unsplash([](auto& s) { s.topicSlug = " "; }), filter},
        {unsplash([](auto& s) { s.filter = UnsplashFilter::user; }), filter},
        {unsplash([](auto& s) { s.filter = UnsplashFilter::search; }), filter},
        {unsplash(periodic), interval},
        {with<WindowsSpotlightSettings>([](auto& s) { s.rotationIntervalSeconds = 0; }), interval},
        {with<MuseumsSettings>([](auto& s) { s.sources.clear(); }), "Choose at least one museum source."},
        {with<MuseumsSettings>([](auto& s) {
             s.useAllCategories = false;
             s.categories.clear();
         }),
         "Choose at least one artwork category."},
        {with<MuseumsSettings>([](auto& s) { s.sources.insert(MuseumsSource::smithsonian); }),
         "Enter a Smithsonian Open Access API key or disable that source."},
        {with<MuseumsSettings>(periodic), interval},
    });
}

TEST(WallpaperValidationTest, pagesAndFilesAreJudgedByTheirAddress) {
    const auto page = [](std::string text) {
        return with<WebpagePresentationSettings>([&](auto& s) { s.urlString = text; });
    };
    const auto invalidPage = [&](std::string text, const std::string& shown) {
        return Row{page(std::move(text)), shown + " is not a valid HTTP or HTTPS webpage URL."};
    };
    using Video = VideoPlaybackSettings;
    using Pdf = PDFPresentationSettings;
    expectProblems({
        {page(" \t"), "Enter a webpage URL for this mode."},
        invalidPage(" quillmar.com ", "quillmar.com"),
        invalidPage("ftp://quillmar.com", "ftp://quillmar.com"),
        invalidPage("https:///path", "https:///path"),
        invalidPage("https://a b", "https://a b"),
        {WallpaperMode{Video{}}, "Choose a video for this mode."},
        {with<Video>([](auto& s) {
             s.videoURL = url("file:///ok/a.mp4");
             s.cachedVideoURL = url("file:///gone/a%20b.mp4");
         }),
         "Quillmar cannot read the selected video at /gone/a b.mp4. Choose the file again."},
        {with<Video>([](auto& s) { s.videoURL = url("https://h/ok/a.mp4"); }),
         "Quillmar cannot read the selected video at https://h/ok/a.mp4. Choose the file again."},
        {WallpaperMode{Pdf{}}, "Choose a PDF for this mode."},
        {with<Pdf>([](auto& s) { s.pdfURL = url("file:///gone/a.pdf"); }),
         "Quillmar cannot read the selected PDF at /gone/a.pdf. Choose the file again."},
    });
}

TEST(WallpaperValidationTest, whatLooksOddButWorksIsAccepted) {
    const std::vector<WallpaperMode> modes = {
        {},
        {BingSettings{}},
        {MatrixPresentationSettings{}},
        {NasaEpicSettings{.recentDays = 99}},
        {APODSettings{.rotationIntervalSeconds = 0}},
        {WebpagePresentationSettings{.urlString = " HTTPS://quillmar.com/a?b \n"}},
        with<SolidColorPresentationSettings>([](auto& s) { s.hexColor = " #aBcDeF\n"; }),
        with<ColorFaderPresentationSettings>([](auto& s) {
            s.colors = stops(10);
            s.fadeDurationSeconds = 86399;
        }),
        with<ColorFaderPresentationSettings>([](auto& s) { s.fadeDurationSeconds = 1; }),
        with<MuseumsSettings>([](auto& s) { s.categories.clear(); }),
        with<HexellsPresentationSettings>([](auto& s) {
            s.changesAutomatically = false;
            s.automaticChangeIntervalSeconds = 0;
        }),
        with<VideoPlaybackSettings>([](auto& s) {
            s.videoURL = url("file:///gone/a.mp4");
            s.cachedVideoURL = url("file:///ok/a.mp4");
        }),
        with<PDFPresentationSettings>([](auto& s) { s.pdfURL = url("file:///ok/a.pdf"); }),
    };
    for (const WallpaperMode& mode : modes) EXPECT_EQ(problem(mode), "") << enumName(mode.kind());
}

TEST(WallpaperValidationTest, theFirstIssueOfAListRespectsOrderAndSelection) {
    const WallpaperMode broken{ImagePresentationSettings{}};
    const WallpaperSettings wallpapers{{{"a", {}}, {"b", broken}, {"c", {SlideshowPresentationSettings{}}}}};
    EXPECT_EQ(wallpapers.firstValidationIssue()->displayID, "b");
    EXPECT_EQ(wallpapers.firstValidationIssue(DisplayIDs{"a", "c"})->error.errorCase(),
              WallpaperApplicationError::Case::missingSlideshowFolder);
    EXPECT_FALSE(wallpapers.firstValidationIssue(DisplayIDs{"a", "unknown"}));
    const LockScreenSettings lockScreens{{{"a", {}}, {"b", {UnsplashSettings{}}}}};
    EXPECT_EQ(lockScreens.firstValidationIssue()->error.message(english),
              "Enter an Unsplash access key for this mode.");
    EXPECT_FALSE(lockScreens.firstValidationIssue(DisplayIDs{}));
}

TEST(WallpaperApplicationErrorTest, messagesTakeTheirValues) {
    using Error = WallpaperApplicationError;
    EXPECT_EQ(Error(Error::Case::matrixCameraUnavailable).message(english),
              "No camera is available. Connect a camera, then retry.");
    EXPECT_EQ(
        Error(Error::Case::matrixCameraUnavailable, "Cam %@").message(portuguese),
        "A câmara selecionada Cam %@ não está disponível. Volte a ligá-la ou escolha outra câmara e tente "
        "novamente.");
    EXPECT_EQ(Error(Error::Case::cacheWriteFailed, "/c", "disk full").message(english),
              "Quillmar could not save the generated wallpaper at /c: disk full.");
    EXPECT_EQ(
        Error(Error::Case::suppressedWhileLocked).message(portuguese),
        "O pedido de fundo de ecrã foi ignorado enquanto a substituição do ecrã de bloqueio estava ativa.");
}

}  // namespace
}  // namespace quillmar
