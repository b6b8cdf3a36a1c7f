#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Url.h"
#include "modes/MuseumsSettings.h"

namespace quillmar {

/// A work in the public domain, with a picture of it.
struct MuseumArtwork {
    std::string identity;  ///< unique across all museums
    std::string title;     ///< never empty
    Url imageURL;
    MuseumsSource source = MuseumsSource::artInstituteChicago;
    std::optional<std::string> artist;
    std::optional<std::string> page;  ///< web address of what the museum says about it
    std::optional<std::string> licence;
    bool operator==(const MuseumArtwork&) const = default;
};

/// One of the linked records that lead from a work to its picture.
struct RijksmuseumRecord {
    std::string id;
    std::string title;
    std::optional<std::string> linkedID;  ///< of the record that comes next
    std::optional<Url> imageURL;
};

// What the museums' answers say. Each throws `JsonRecordError`.

std::vector<MuseumArtwork> parseArtInstitute(std::string_view json);
std::vector<std::int64_t> parseMetropolitanSearch(std::string_view json);
/// Nothing when the work is not in the public domain or has no picture.
std::optional<MuseumArtwork> parseMetropolitanObject(std::string_view json);
/// Items that are no addresses are left out, as they are of every list of this museum.
std::vector<Url> parseRijksmuseumSearch(std::string_view json);
RijksmuseumRecord parseRijksmuseumRecord(std::string_view json);
std::vector<MuseumArtwork> parseCleveland(std::string_view json);
std::vector<MuseumArtwork> parseSMK(std::string_view json);
std::vector<MuseumArtwork> parseSmithsonian(std::string_view json);

/// The work that a chain of records told of, with its picture in a size for displays.
MuseumArtwork rijksmuseumArtwork(const RijksmuseumRecord& first, const Url& image);

}  // namespace quillmar
