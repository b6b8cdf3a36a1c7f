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

std::string problem(const WallpaperMode& mode, GeneralLanguage language = english) {
    const auto error = mode.validationError(readableBelowOk);
    return error ? error->message(language) : "";
}

Url url(std::string_view text) { return *Url::parse(text); }

std::vector<ColorFaderStop> stops(std::size_t count) {
    return std::vector<ColorFaderStop>(count, ColorFaderStop{Uuid(), "#123456"});
}

struct Row {
    WallpaperMode mode;
    std::string english, portuguese;
};

void expectProblems(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(problem(row.mode), row.english);
        EXPECT_EQ(problem(row.mode, portuguese), row.portuguese);
    }
}

TEST(WallpaperValidationTest, localModesSayWhatIsMissingOrWrong) {
    using Fader = ColorFaderPresentationSettings;
    using Slideshow = SlideshowPresentationSettings;
    const std::string fadeText = "Set the color fade duration between one second and 23:59:59.";
    const std::string fadeTexto = "Defina a duração da transição de cores entre um segundo e 23:59:59.";
    expectProblems({
        {with<SolidColorPresentationSettings>([](auto& s) { s.hexColor = "#1234567"; }),
         "#1234567 is not a valid six-digit hex color.",
         "#1234567 não é uma cor hexadecimal válida de seis dígitos."},
        {with<SolidColorPresentationSettings>([](auto& s) { s.hexColor = "é1234"; }),
         "é1234 is not a valid six-digit hex color.",
         "é1234 não é uma cor hexadecimal válida de seis dígitos."},
        {with<Fader>([](auto& s) { s.colors = stops(1); }), "Add at least two colors to the color fader.",
         "Adicione pelo menos duas cores à transição de cores."},
        {with<Fader>([](auto& s) { s.colors = stops(11); }), "The color fader supports up to 10 colors.",
         "A transição de cores suporta até 10 cores."},
        {with<Fader>([](auto& s) { s.colors[2].hexColor = "red"; }),
         "red is not a valid six-digit color fader color.",
         "red não é uma cor válida de seis dígitos para a transição de cores."},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = 0.5; }), fadeText, fadeTexto},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = 86400; }), fadeText, fadeTexto},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = INFINITY; }), fadeText, fadeTexto},
        {with<Fader>([](auto& s) { s.fadeDurationSeconds = std::nan(""); }), fadeText, fadeTexto},
        {with<ImagePresentationSettings>([](auto& s) { s.cachedImageURL = url("file:///ok/a.png"); }),
         "Choose an image for this mode.", "Escolha uma imagem para este modo."},
        {WallpaperMode{Slideshow{}}, "Choose an image folder before applying this slideshow.",
         "Escolha uma pasta de imagens antes de aplicar esta apresentação."},
        {with<Slideshow>([](auto& s) {
             s.folderURL = url("file:///ok");
             s.rotationIntervalSeconds = 0;
         }),
         "Set the slideshow interval between one second and 23:59:59.",
         "Defina o intervalo da apresentação entre um segundo e 23:59:59."},
        {WallpaperMode{VideoPlaylistPlaybackSettings{}},
         "Choose a video folder before applying this playlist.",
         "Escolha uma pasta de vídeos antes de aplicar esta lista de reprodução."},
        {with<HexellsPresentationSettings>([](auto& s) { s.automaticChangeIntervalSeconds = 0; }),
         "Set the Hexells automatic change interval between one second and 23:59:59.",
         "Defina o intervalo de mudança automática do Hexells entre um segundo e 23:59:59."},
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
    const std::string intervalo = "Defina o intervalo de mudança automática entre um segundo e 23:59:59.";
    const std::string filter = "Enter a topic, user, or search term for Unsplash.";
    const std::string filtro = "Introduza um tema, um utilizador ou um termo de pesquisa para o Unsplash.";
    const std::string observation = "Set the NASA EPIC observation duration between 10 and 86399 seconds.";
    const std::string observacao =
        "Defina a duração de cada observação do NASA EPIC entre 10 e 86399 segundos.";
    const std::string days = "Choose between 1 and 7 recent days for NASA EPIC.";
    const std::string dias = "Escolha entre 1 e 7 dias recentes para o NASA EPIC.";
    const auto periodic = [](auto& s) {
        s.switchAutomatically = true;
        s.rotationIntervalSeconds = 0;
    };
    expectProblems({
        {with<APODSettings>([](auto& s) {
             s.switchPeriodically = true;
             s.rotationIntervalSeconds = 86400;
         }),
         interval, intervalo},
        {epic(9.9, 1), observation, observacao},
        {epic(86400, 1), observation, observacao},
        {epic(10, 0), days, dias},
        {epic(10, 8), days, dias},
        {with<WallhavenSettings>([](auto& s) { s.includeGeneral = s.includeSafe = false; }),
         "Choose at least one Wallhaven category.", "Escolha pelo menos uma categoria do Wallhaven."},
        {with<WallhavenSettings>([](auto& s) { s.includeSafe = false; }),
         "Choose at least one Wallhaven purity level.",
         "Escolha pelo menos um nível de pureza do Wallhaven."},
        {with<WallhavenSettings>([](auto& s) {
             s.includeNSFW = true;
             s.apiKey = " \n";
         }),
         "Enter a Wallhaven API key to use the NSFW category.",
         "Introduza uma chave de API do Wallhaven para usar a categoria NSFW."},
        {with<WallhavenSettings>(periodic), interval, intervalo},
        {WallpaperMode{UnsplashSettings{}}, "Enter an Unsplash access key for this mode.",
         "Introduza uma chave de acesso do Unsplash para este modo."},
        {unsplash([](auto& s) { s.topicSlug = " "; }), filter, filtro},
        {unsplash([](auto& s) { s.filter = UnsplashFilter::user; }), filter, filtro},
        {unsplash([](auto& s) { s.filter = UnsplashFilter::search; }), filter, filtro},
        {unsplash(periodic), interval, intervalo},
        {with<WindowsSpotlightSettings>([](auto& s) { s.rotationIntervalSeconds = 0; }), interval, intervalo},
        {with<MuseumsSettings>([](auto& s) { s.sources.clear(); }), "Choose at least one museum source.",
         "Escolha pelo menos um museu."},
        {with<MuseumsSettings>([](auto& s) {
             s.useAllCategories = false;
             s.categories.clear();
         }),
         "Choose at least one artwork category.", "Escolha pelo menos uma categoria de obras de arte."},
        {with<MuseumsSettings>([](auto& s) { s.sources.insert(MuseumsSource::smithsonian); }),
         "Enter a Smithsonian Open Access API key or disable that source.",
         "Introduza uma chave de API do Smithsonian Open Access ou desative essa fonte."},
        {with<MuseumsSettings>(periodic), interval, intervalo},
    });
}

TEST(WallpaperValidationTest, pagesAndFilesAreJudgedByTheirAddress) {
    const auto page = [](std::string text) {
        return with<WebpagePresentationSettings>([&](auto& s) { s.urlString = text; });
    };
    const auto invalidPage = [&](std::string text, const std::string& shown) {
        return Row{page(std::move(text)), shown + " is not a valid HTTP or HTTPS webpage URL.",
                   shown + " não é um endereço HTTP ou HTTPS válido de uma página web."};
    };
    using Video = VideoPlaybackSettings;
    using Pdf = PDFPresentationSettings;
    expectProblems({
        {page(" \t"), "Enter a webpage URL for this mode.",
         "Introduza o endereço de uma página web para este modo."},
        invalidPage(" quillmar.com ", "quillmar.com"),
        invalidPage("ftp://quillmar.com", "ftp://quillmar.com"),
        invalidPage("https:///path", "https:///path"),
        invalidPage("https://a b", "https://a b"),
        {WallpaperMode{Video{}}, "Choose a video for this mode.", "Escolha um vídeo para este modo."},
        {with<Video>([](auto& s) {
             s.videoURL = url("file:///ok/a.mp4");
             s.cachedVideoURL = url("file:///gone/a%20b.mp4");
         }),
         "Quillmar cannot read the selected video at /gone/a b.mp4. Choose the file again.",
         "O Quillmar não consegue ler o vídeo selecionado em /gone/a b.mp4. Escolha o ficheiro novamente."},
        {with<Video>([](auto& s) { s.videoURL = url("https://h/ok/a.mp4"); }),
         "Quillmar cannot read the selected video at https://h/ok/a.mp4. Choose the file again.",
         "O Quillmar não consegue ler o vídeo selecionado em https://h/ok/a.mp4. Escolha o ficheiro "
         "novamente."},
        {WallpaperMode{Pdf{}}, "Choose a PDF for this mode.", "Escolha um PDF para este modo."},
        {with<Pdf>([](auto& s) { s.pdfURL = url("file:///gone/a.pdf"); }),
         "Quillmar cannot read the selected PDF at /gone/a.pdf. Choose the file again.",
         "O Quillmar não consegue ler o PDF selecionado em /gone/a.pdf. Escolha o ficheiro novamente."},
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
