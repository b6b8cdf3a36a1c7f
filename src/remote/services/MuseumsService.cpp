#include "remote/services/MuseumsService.h"

#include <algorithm>
#include <exception>
#include <set>

#include "base/Hash.h"
#include "remote/fetching/RemoteImageProviderError.h"
#include "remote/fetching/ServiceText.h"

namespace quillmar {
namespace {

using Error = RemoteImageProviderError;

constexpr std::int64_t maximumImageBytes = 20971520;
constexpr std::chrono::seconds candidatesLife{86400};
constexpr std::size_t maximumCandidates = 128;
constexpr std::size_t maximumCacheEntries = 16;
constexpr std::size_t maximumRecent = 64;
/// Pictures that one turn of a museum may try.
constexpr int downloadsOfAMuseum = 3;

RemotePicture describedPicture(const MuseumArtwork& artwork, std::filesystem::path image,
                               const std::string& museum, bool showsInformation) {
    RemotePicture picture{.image = std::move(image),
                          .sourceDescription = artwork.title + " — " + museum,
                          .credit = {.title = artwork.title,
                                     .author = artwork.artist,
                                     .sourceURL = artwork.page,
                                     .licence = artwork.licence}};
    if (showsInformation) {
        picture.overlayCaption = captionOf({artwork.title, artwork.artist.value_or(""), museum});
    }
    return picture;
}

}  // namespace

MuseumCandidateCacheKey MuseumCandidateCacheKey::of(const MuseumQuery& query) {
    MuseumCandidateCacheKey key{query.source, query.category, {}};
    if (query.source == MuseumsSource::smithsonian) key.keyFingerprint = fnv1a64(query.smithsonianAPIKey);
    return key;
}

Task<RemotePicture> MuseumsService::resolve(MuseumsSettings settings, RemoteImageSelectionContext context) {
    MuseumQuery query{.smithsonianAPIKey = settings.smithsonianAPIKey};
    if (!settings.useAllCategories && !settings.categories.empty()) {
        const auto chosen = static_cast<std::ptrdiff_t>(randomIndex_(settings.categories.size()));
        query.category = *std::next(settings.categories.begin(), chosen);
    }
    const auto sources =
        shuffled(std::vector<MuseumsSource>(settings.sources.begin(), settings.sources.end()), randomIndex_);
    std::exception_ptr lastError =
        std::make_exception_ptr(Error(Error::Case::noUsableImage, "the enabled museums"));
    for (const MuseumsSource source : sources) {
        query.source = source;
        try {
            co_return co_await pictureOf(query, context, settings.showsArtworkInformation);
        } catch (const CancellationError&) {
            throw;
        } catch (const std::exception&) {
            lastError = std::current_exception();  // a museum that fails costs only its turn
        }
        co_await throwIfCancelled();
    }
    std::rethrow_exception(lastError);
}

Task<RemotePicture> MuseumsService::pictureOf(MuseumQuery query, Context context, bool showsInformation) {
    const RemoteService& museum = services_.museum(query.source);
    std::vector<MuseumArtwork> works = co_await candidates(query);
    for (int attempt = 1;; ++attempt) {
        const auto artwork = choose(works, context);
        if (!artwork) throw Error(Error::Case::noUsableImage, museum.name);
        std::optional<std::filesystem::path> image;
        try {
            image = co_await fetching_.downloadImage(museum, artwork->imageURL, maximumImageBytes);
        } catch (const Error&) {
            // Lists name pictures that are gone, and some hosts challenge programs now and then.
            std::erase(works, *artwork);
            if (attempt == downloadsOfAMuseum || works.empty()) throw;
        }
        co_await throwIfCancelled();
        if (!image) continue;
        record(context, artwork->identity);
        co_return describedPicture(*artwork, *std::move(image), museum.name, showsInformation);
    }
}

Task<std::vector<MuseumArtwork>> MuseumsService::candidates(MuseumQuery query) {
    const auto key = MuseumCandidateCacheKey::of(query);
    const auto found = museumCandidateCache_.find(key);
    if (found != museumCandidateCache_.end() && clock_.now() - found->second.fetchedAt < candidatesLife) {
        found->second.lastAccess = clock_.now();
        co_return found->second.candidates;
    }
    auto artworks = co_await catalog_.artworks(query);
    if (artworks.size() > maximumCandidates) {
        artworks.erase(artworks.begin() + maximumCandidates, artworks.end());
    }
    if (artworks.empty()) {
        throw Error(Error::Case::noUsableImage, services_.museum(query.source).name);
    }
    remember(key, artworks);
    co_return artworks;
}

void MuseumsService::remember(MuseumCandidateCacheKey key, std::vector<MuseumArtwork> candidates) {
    const WallTime now = clock_.now();
    museumCandidateCache_.insert_or_assign(key, MuseumCandidateCacheEntry{std::move(candidates), now, now});
    while (museumCandidateCache_.size() > maximumCacheEntries) {
        museumCandidateCache_.erase(std::ranges::min_element(
            museumCandidateCache_, {}, [](const auto& entry) { return entry.second.lastAccess; }));
    }
}

std::optional<MuseumArtwork> MuseumsService::choose(const std::vector<MuseumArtwork>& candidates,
                                                    const Context& context) {
    const auto& recent = recentMuseumArtworkByContext_[context];
    std::set<std::string> elsewhere;
    for (const auto& [other, identity] : activeMuseumArtworkByContext_) {
        if (other.presentation == context.presentation && other.displayID != context.displayID) {
            elsewhere.insert(identity);
        }
    }
    std::vector<const MuseumArtwork*> fresh;
    std::vector<const MuseumArtwork*> shownBefore;
    for (const MuseumArtwork& artwork : candidates) {
        if (elsewhere.contains(artwork.identity)) continue;
        const bool isRecent = std::ranges::find(recent, artwork.identity) != recent.end();
        (isRecent ? shownBefore : fresh).push_back(&artwork);
    }
    const auto& choice = fresh.empty() ? shownBefore : fresh;
    if (choice.empty()) return std::nullopt;
    return *choice[randomIndex_(choice.size())];
}

void MuseumsService::record(const Context& context, const std::string& identity) {
    auto& recent = recentMuseumArtworkByContext_[context];
    std::erase(recent, identity);
    recent.push_back(identity);
    if (recent.size() > maximumRecent) {
        recent.erase(recent.begin(), recent.end() - static_cast<std::ptrdiff_t>(maximumRecent));
    }
    activeMuseumArtworkByContext_[context] = identity;
}

}  // namespace quillmar
