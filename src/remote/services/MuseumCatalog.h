#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/RandomIndex.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/MuseumAnswers.h"

namespace quillmar {

/// What a museum is asked for.
struct MuseumQuery {
    MuseumsSource source = MuseumsSource::artInstituteChicago;
    std::optional<MuseumsArtworkCategory> category;  ///< absent: works of every kind
    std::string smithsonianAPIKey;
};
/// The address of the first request.
Url museumRequest(const Url& host, const MuseumQuery& query);

/// Asks the museums for works, each in its own way. Main thread.
class MuseumCatalog {
public:
    MuseumCatalog(RemoteImageFetching& fetching, const RemoteServices& services, RandomIndex randomIndex)
        : fetching_(fetching), services_(services), randomIndex_(std::move(randomIndex)) {}

    Task<std::vector<MuseumArtwork>> artworks(MuseumQuery query);

private:
    Task<std::string> fetchFromMetropolitan(Url url);
    Task<std::string> metropolitanSearch(MuseumQuery query);
    Task<std::vector<MuseumArtwork>> metropolitanObjects(MuseumQuery query);
    Task<std::optional<MuseumArtwork>> metropolitanObject(std::int64_t id);
    Task<std::vector<MuseumArtwork>> rijksmuseumWorks(std::vector<Url> records);
    Task<std::optional<MuseumArtwork>> rijksmuseumWork(Url record);

    RemoteImageFetching& fetching_;
    const RemoteServices& services_;
    RandomIndex randomIndex_;
    TimePoint nextMetropolitanTurn_;
};

}  // namespace quillmar
