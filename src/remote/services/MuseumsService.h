#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "async/WallClock.h"
#include "remote/services/MuseumCatalog.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

/// Whose list of works it is. The key of a service is in it as a fingerprint alone.
struct MuseumCandidateCacheKey {
    MuseumsSource source = MuseumsSource::artInstituteChicago;
    std::optional<MuseumsArtworkCategory> category;
    std::optional<std::uint64_t> keyFingerprint;
    auto operator<=>(const MuseumCandidateCacheKey&) const = default;

    static MuseumCandidateCacheKey of(const MuseumQuery& query);
};
struct MuseumCandidateCacheEntry {
    std::vector<MuseumArtwork> candidates;
    WallTime fetchedAt;
    WallTime lastAccess;
};

/// Works of the enabled museums, in an order of its own for each display, and no work on two displays at
/// once. Main thread.
class MuseumsService {
public:
    MuseumsService(RemoteImageFetching& fetching, const RemoteServices& services, const WallClock& clock,
                   RandomIndex randomIndex)
        : fetching_(fetching),
          services_(services),
          clock_(clock),
          randomIndex_(randomIndex),
          catalog_(fetching, services, std::move(randomIndex)) {}

    Task<RemotePicture> resolve(MuseumsSettings settings, RemoteImageSelectionContext context);

private:
    using Context = RemoteImageSelectionContext;
    Task<RemotePicture> pictureOf(MuseumQuery query, Context context, bool showsInformation);
    Task<std::vector<MuseumArtwork>> candidates(MuseumQuery query);
    void remember(MuseumCandidateCacheKey key, std::vector<MuseumArtwork> candidates);
    std::optional<MuseumArtwork> choose(const std::vector<MuseumArtwork>& candidates, const Context& context);
    void record(const Context& context, const std::string& identity);

    RemoteImageFetching& fetching_;
    const RemoteServices& services_;
    const WallClock& clock_;
    RandomIndex randomIndex_;
    MuseumCatalog catalog_;
    std::map<MuseumCandidateCacheKey, MuseumCandidateCacheEntry> museumCandidateCache_;
    std::map<Context, std::vector<std::string>> recentMuseumArtworkByContext_;  ///< identities, oldest first
    std::map<Context, std::string> activeMuseumArtworkByContext_;
};

}  // namespace quillmar
