#include "remote/services/MuseumCatalog.h"

#include <fmt/format.h>

#include "async/Sleep.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

/// The Metropolitan's search does not say what is in the public domain: each object is asked for by itself.
constexpr std::size_t metropolitanLookups = 12;
constexpr std::chrono::milliseconds metropolitanPause{500};
constexpr std::size_t rijksmuseumChains = 8;
constexpr int longestChain = 3;

std::string_view term(MuseumsArtworkCategory category) {
    switch (category) {
        case MuseumsArtworkCategory::paintings: return "painting";
        case MuseumsArtworkCategory::photography: return "photograph";
        case MuseumsArtworkCategory::drawingsAndPrints: return "drawing print";
        case MuseumsArtworkCategory::sculpture: return "sculpture";
    }
    return {};
}
std::string termOr(const MuseumQuery& query, std::string_view otherwise) {
    return std::string(query.category ? term(*query.category) : otherwise);
}
/// The one word that some museums have for a kind of works.
std::string_view type(MuseumsArtworkCategory category) {
    return category == MuseumsArtworkCategory::drawingsAndPrints ? "print" : term(category);
}
std::string capitalized(std::string_view word) {
    return uppercased(word.substr(0, 1)) + std::string(word.substr(1));
}

std::string artInstituteParams(const MuseumQuery& query) {
    std::string narrowing;
    if (query.category) {
        narrowing = fmt::format(
            R"(,"should":[{{"match":{{"classification_titles":"{0}"}}}},{{"match":{{"artwork_type_title":"{0}"}}}}],)"
            R"("minimum_should_match":1)",
            term(*query.category));
    }
    return fmt::format(R"({{"query":{{"bool":{{"must":[{{"term":{{"is_public_domain":true}}}},)"
                       R"({{"exists":{{"field":"image_id"}}}}]{}}}}}}})",
                       narrowing);
}

}  // namespace

Url museumRequest(const Url& host, const MuseumQuery& query) {
    const auto request = [&](std::string_view path, const std::vector<QueryItem>& items) {
        return appendingQueryItems(appendingPath(host, path), items);
    };
    switch (query.source) {
        case MuseumsSource::artInstituteChicago:
            return request("/api/v1/artworks/search", {{"params", artInstituteParams(query)},
                                                       {"limit", "100"},
                                                       {"fields", "id,title,image_id,artist_title"}});
        case MuseumsSource::metropolitanMuseum:
            return request("/public/collection/v1.1/search", {{"hasImages", "true"},
                                                              {"isPublicDomain", "true"},
                                                              {"q", termOr(query, "art")},
                                                              {"offset", "0"},
                                                              {"limit", "100"}});
        case MuseumsSource::rijksmuseum: {
            std::vector<QueryItem> items = {{"imageAvailable", "true"}};
            if (query.category) items.emplace_back("type", type(*query.category));
            return request("/search/collection", std::move(items));
        }
        case MuseumsSource::clevelandMuseum: {
            std::vector<QueryItem> items = {{"has_image", "1"}, {"limit", "100"}, {"skip", "0"}};
            if (query.category) items.emplace_back("type", capitalized(type(*query.category)));
            return request("/api/artworks/", std::move(items));
        }
        case MuseumsSource::smkDenmark:
            return request("/api/v1/art/search/", {{"keys", termOr(query, "*")},
                                                   {"filters", "[has_image:true],[public_domain:true]"},
                                                   {"offset", "0"},
                                                   {"rows", "100"}});
        case MuseumsSource::smithsonian:
            return request("/openaccess/api/v1.0/search",
                           {{"q", termOr(query, "art") + " AND online_media_type:Images"},
                            {"api_key", std::string(trimmed(query.smithsonianAPIKey))},
                            {"start", "0"},
                            {"rows", "100"}});
    }
    return host;
}

Url formerMetropolitanRequest(const Url& host, const MuseumQuery& query) {
    return appendingQueryItems(appendingPath(host, "/public/collection/v1/search"),
                               {{"hasImages", "true"}, {"q", termOr(query, "art")}});
}

Task<std::vector<MuseumArtwork>> MuseumCatalog::artworks(MuseumQuery query) {
    const RemoteService& museum = services_.museum(query.source);
    if (query.source == MuseumsSource::metropolitanMuseum) co_return co_await metropolitanObjects(query);
    std::map<std::string, std::string> headers;
    if (query.source == MuseumsSource::artInstituteChicago) {
        headers.emplace("AIC-User-Agent", services_.userAgent);  // as it asks of whoever comes often
    }
    const std::string json =
        co_await fetching_.fetchMetadata(museum, museumRequest(museum.host, query), std::move(headers));
    switch (query.source) {
        case MuseumsSource::artInstituteChicago: co_return understood(museum, parseArtInstitute, json);
        case MuseumsSource::rijksmuseum:
            co_return co_await rijksmuseumWorks(understood(museum, parseRijksmuseumSearch, json));
        case MuseumsSource::clevelandMuseum: co_return understood(museum, parseCleveland, json);
        case MuseumsSource::smkDenmark: co_return understood(museum, parseSMK, json);
        case MuseumsSource::smithsonian: co_return understood(museum, parseSmithsonian, json);
        case MuseumsSource::metropolitanMuseum: break;
    }
    co_return std::vector<MuseumArtwork>();
}

/// It refuses whoever asks more than twice a second, for a good while.
Task<std::string> MuseumCatalog::fetchFromMetropolitan(Url url) {
    const MainLoop& loop = *(co_await currentContext()).loop;
    const TimePoint turn = std::max(nextMetropolitanTurn_, loop.now());
    nextMetropolitanTurn_ = turn + metropolitanPause;
    if (turn > loop.now()) co_await sleepFor(turn - loop.now());
    co_return co_await fetching_.fetchMetadata(services_.museum(MuseumsSource::metropolitanMuseum),
                                               std::move(url));
}

Task<std::string> MuseumCatalog::metropolitanSearch(MuseumQuery query) {
    const Url& host = services_.museum(query.source).host;
    try {
        co_return co_await fetchFromMetropolitan(museumRequest(host, query));
    } catch (const RemoteImageProviderError& error) {
        if (!error.isNotFound()) throw;  // else the search stands where it stood before
    }
    co_return co_await fetchFromMetropolitan(formerMetropolitanRequest(host, query));
}

Task<std::vector<MuseumArtwork>> MuseumCatalog::metropolitanObjects(MuseumQuery query) {
    const RemoteService& museum = services_.museum(query.source);
    auto ids = shuffled(understood(museum, parseMetropolitanSearch, co_await metropolitanSearch(query)),
                        randomIndex_);
    if (ids.size() > metropolitanLookups) ids.resize(metropolitanLookups);
    std::vector<MuseumArtwork> found;
    for (const std::int64_t id : ids) {
        co_await throwIfCancelled();
        if (auto artwork = co_await metropolitanObject(id)) found.push_back(*std::move(artwork));
    }
    co_return found;
}

/// Nothing for a number that the search knows and the collection does not, which it says in two ways.
Task<std::optional<MuseumArtwork>> MuseumCatalog::metropolitanObject(std::int64_t id) {
    const Url& host = services_.museum(MuseumsSource::metropolitanMuseum).host;
    try {
        co_return parseMetropolitanObject(co_await fetchFromMetropolitan(
            appendingPath(host, fmt::format("/public/collection/v1/objects/{}", id))));
    } catch (const RemoteImageProviderError& error) {
        if (!error.isNotFound()) throw;
    } catch (const JsonRecordError&) {
        // "not a valid object"
    }
    co_return std::nullopt;
}

Task<std::vector<MuseumArtwork>> MuseumCatalog::rijksmuseumWorks(std::vector<Url> records) {
    records = shuffled(std::move(records), randomIndex_);
    if (records.size() > rijksmuseumChains) records.erase(records.begin() + rijksmuseumChains, records.end());
    std::vector<MuseumArtwork> found;
    for (const Url& record : records) {
        try {
            if (auto artwork = co_await rijksmuseumWork(record)) found.push_back(*std::move(artwork));
        } catch (const RemoteImageProviderError& error) {
            if (!error.isNotFound()) throw;  // else a chain with a link that is lost
        }
    }
    co_return found;
}

/// From the record of a work over that of what it shows to that of its photograph.
Task<std::optional<MuseumArtwork>> MuseumCatalog::rijksmuseumWork(Url record) {
    const RemoteService& museum = services_.museum(MuseumsSource::rijksmuseum);
    std::optional<RijksmuseumRecord> first;
    std::optional<Url> next = std::move(record);
    for (int step = 0; next && step < longestChain; ++step) {
        co_await throwIfCancelled();
        const Url url = appendingQueryItems(withAuthorityOf(*next, museum.host), {{"_profile", "la-framed"}});
        const auto now =
            understood(museum, parseRijksmuseumRecord, co_await fetching_.fetchMetadata(museum, url));
        if (!first) first = now;
        if (now.imageURL) co_return rijksmuseumArtwork(*first, *now.imageURL);
        next = now.linkedID ? Url::parse(*now.linkedID) : std::nullopt;
    }
    co_return std::nullopt;
}

}  // namespace quillmar
