#include "remote/services/WindowsSpotlightService.h"

#include <vector>

#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "modes/FileReadable.h"
#include "remote/services/ServiceAnswer.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

struct Item {
    std::string item;  ///< a document in itself
    static void describe(auto& self, auto& io) { io.required("item", self.item); }
};
struct Batch {
    std::optional<std::vector<Item>> items;  ///< left out, at random, of an answer without a picture
    static void describe(auto& self, auto& io) { io.optional("items", self.items); }
};
struct SpotlightEnvelope {
    Batch batch;
    static void describe(auto& self, auto& io) { io.required("batchrsp", self.batch); }
};
struct LandscapeImage {
    std::string asset;
    static void describe(auto& self, auto& io) { io.required("asset", self.asset); }
};
struct Ad {
    LandscapeImage landscapeImage;
    std::optional<std::string> title;
    std::optional<std::string> copyright;
    std::optional<std::string> iconHoverText;
    static void describe(auto& self, auto& io) {
        io.required("landscapeImage", self.landscapeImage)
            .optional("title", self.title)
            .optional("copyright", self.copyright)
            .optional("iconHoverText", self.iconHoverText);
    }
};
struct SpotlightPayload {
    Ad ad;
    static void describe(auto& self, auto& io) { io.required("ad", self.ad); }
};

std::string countryOf(std::string_view locale) {
    while (locale.ends_with('-')) locale.remove_suffix(1);
    const std::string_view last = locale.substr(locale.rfind('-') + 1);
    return last.empty() ? "US" : uppercased(last);
}

/// The picture with the words that the settings want on it: the same ones when it comes again.
RemotePicture pictureOf(const WindowsSpotlightSettings& settings, WindowsSpotlightSelection selection,
                        std::filesystem::path file) {
    RemotePicture picture{.image = std::move(file), .sourceDescription = selection.sourceDescription};
    if (settings.showsCopyright) picture.overlayCaption = selection.sourceDescription;
    picture.windowsSpotlightSelection = std::move(selection);
    return picture;
}

}  // namespace

std::optional<SpotlightImage> parseSpotlight(std::string_view json) {
    const auto envelope = json::decode<SpotlightEnvelope>(json);
    const auto& items = envelope.batch.items;
    if (!items || items->empty()) return std::nullopt;
    Ad ad = json::decode<SpotlightPayload>(items->front().item).ad;
    const auto& credit = ad.copyright ? ad.copyright : ad.iconHoverText ? ad.iconHoverText : ad.title;
    return SpotlightImage{std::move(ad.landscapeImage.asset), ad.title, ad.copyright, credit};
}

Url spotlightRequest(const Url& host, const std::string& locale) {
    return appendingQueryItems(appendingPath(host, "/v4/api/selection"), {{"placement", "88000820"},
                                                                          {"bcnt", "1"},
                                                                          {"country", countryOf(locale)},
                                                                          {"locale", locale},
                                                                          {"fmt", "json"}});
}

bool isCurrentSelection(const WindowsSpotlightSettings& settings, WallTime now) {
    const auto& last = settings.lastSelection;
    return last && last->appliedAt && last->locale == settings.locale &&
           *last->appliedAt + Seconds(settings.rotationIntervalSeconds) > now;
}

Task<RemotePicture> WindowsSpotlightService::resolve(WindowsSpotlightSettings settings,
                                                     bool advancesSelection) {
    if (!advancesSelection && isCurrentSelection(settings, clock_.now())) {
        if (auto picture = co_await remembered(settings)) co_return *std::move(picture);
    }
    const RemoteImageProviderError unusable(RemoteImageProviderError::Case::noUsableImage, service_.name);
    const std::string json = co_await fetching_.fetchMetadata(
        service_, spotlightRequest(service_.host, settings.locale), {{"User-Agent", "Mozilla/5.0"}});
    const auto image = understood(service_, parseSpotlight, json);
    const auto url = image ? Url::parse(image->asset) : std::nullopt;
    if (!url) throw unusable;
    std::filesystem::path file = co_await fetching_.downloadImage(service_, *url);
    WindowsSpotlightSelection selection{Url::fromFilePath(file), image->credit, settings.locale, {}};
    RemotePicture picture = pictureOf(settings, std::move(selection), std::move(file));
    picture.credit = {.title = unlessBlank(image->title), .licence = unlessBlank(image->copyright)};
    co_return picture;
}

Task<std::optional<RemotePicture>> WindowsSpotlightService::remembered(WindowsSpotlightSettings settings) {
    auto& selection = settings.lastSelection;
    const auto file = selection->imageURL.filePath();
    if (!file) co_return std::nullopt;
    const bool isThere = co_await files_.run([file = *file, now = clock_.now()] {
        if (!isReadableFile(file)) return false;
        stampLastUsed(file, now);
        return true;
    });
    if (!isThere) co_return std::nullopt;
    RemotePicture picture = pictureOf(settings, *selection, *file);
    picture.credit.title = unlessBlank(selection->sourceDescription);  // all that is remembered of it
    co_return picture;
}

}  // namespace quillmar
