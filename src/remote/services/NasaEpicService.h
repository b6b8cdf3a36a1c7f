#pragma once
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "async/WallClock.h"
#include "modes/NasaEpicSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

/// A picture of the whole Earth.
struct NasaEpicObservation {
    std::string identifier;
    WallTime capturedAt;
    bool operator==(const NasaEpicObservation&) const = default;
};

/// What the service's answers say, and its addresses.
namespace NasaEpicAPI {
/// The observations of a day, oldest first. Throws `JsonRecordError`.
std::vector<NasaEpicObservation> parseDay(std::string_view json);
/// The days that have observations, newest first. Throws `JsonRecordError`.
std::vector<std::string> parseAvailableDays(std::string_view json);
Url imageURL(const Url& archiveHost, const NasaEpicObservation& observation,
             const NasaEpicSettings& settings);
/// "2024-06-15 00:16 UTC"
std::string momentText(const NasaEpicObservation& observation);
std::string caption(const NasaEpicObservation& observation);
}  // namespace NasaEpicAPI

/// The settings that a sequence was made for.
struct NasaEpicSequenceFingerprint {
    NasaEpicImageProduct imageProduct{};
    bool usesFullResolutionPNG = false;
    int recentDays = 1;
    bool operator==(const NasaEpicSequenceFingerprint&) const = default;

    static NasaEpicSequenceFingerprint of(const NasaEpicSettings& settings) {
        return {settings.imageProduct, settings.usesFullResolutionPNG, settings.recentDays};
    }
};

/// Where the slow film of a context is.
struct NasaEpicSequenceState {
    NasaEpicSequenceFingerprint fingerprint;
    std::vector<NasaEpicObservation> observations;  ///< oldest first
    std::size_t index = 0;                          ///< of the observation that is shown
    WallTime loadedAt;
};

/// The newest whole-Earth picture, or those of the last days one after the other. Main thread.
class NasaEpicService {
public:
    NasaEpicService(RemoteImageFetching& fetching, RemoteService service, Url archiveHost,
                    const WallClock& clock)
        : fetching_(fetching),
          service_(std::move(service)),
          archiveHost_(std::move(archiveHost)),
          clock_(clock) {}
    /// `advancesSelection` moves the film of the context on.
    Task<RemotePicture> resolve(NasaEpicSettings settings, RemoteImageSelectionContext context,
                                bool advancesSelection);

private:
    using Observations = std::vector<NasaEpicObservation>;
    Task<NasaEpicObservation> nextInSequence(NasaEpicSettings settings, RemoteImageSelectionContext context,
                                             bool advancesSelection);
    Task<Observations> newestDay(NasaEpicSettings settings);
    Task<Observations> recentDays(NasaEpicSettings settings);
    Url address(const NasaEpicSettings& settings, const std::string& rest) const;

    RemoteImageFetching& fetching_;
    const RemoteService service_;
    const Url archiveHost_;
    const WallClock& clock_;
    std::map<RemoteImageSelectionContext, NasaEpicSequenceState> nasaEpicSequenceByContext_;
};

}  // namespace quillmar
