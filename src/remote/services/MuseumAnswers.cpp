#include "remote/services/MuseumAnswers.h"

#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

using Text = std::optional<std::string>;

struct ArtInstituteArtwork {
    std::int64_t id = 0;
    Text title;
    Text imageID;
    Text artist;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .optional("title", self.title)
            .optional("image_id", self.imageID)
            .optional("artist_title", self.artist);
    }
};
struct ArtInstituteConfig {
    std::string iiifURL;
    Text websiteURL;
    static void describe(auto& self, auto& io) {
        io.required("iiif_url", self.iiifURL).optional("website_url", self.websiteURL);
    }
};
struct ArtInstituteResponse {
    std::vector<ArtInstituteArtwork> data;
    ArtInstituteConfig config;
    static void describe(auto& self, auto& io) {
        io.required("data", self.data).required("config", self.config);
    }
};

struct MetropolitanSearchResponse {
    std::optional<std::vector<std::int64_t>> objectIDs;
    static void describe(auto& self, auto& io) { io.optional("objectIDs", self.objectIDs); }
};
struct MetropolitanObjectResponse {
    std::int64_t objectID = 0;
    bool isPublicDomain = false;
    Text primaryImage;
    Text primaryImageLarge;
    Text title;
    Text artist;
    Text page;
    static void describe(auto& self, auto& io) {
        io.required("objectID", self.objectID)
            .required("isPublicDomain", self.isPublicDomain)
            .optional("primaryImage", self.primaryImage)
            .optional("primaryImageLarge", self.primaryImageLarge)
            .optional("title", self.title)
            .optional("artistDisplayName", self.artist)
            .optional("objectURL", self.page);
    }
};

/// An element of a list that holds texts as well as objects with a text under one key, and may hold
/// anything else, which counts for nothing.
template <const char* const key>
struct Mixed {
    Text text;
};
template <const char* const key>
void read(const nlohmann::json& json, Mixed<key>& value, const json::Place&) {
    const nlohmann::json* found = json::detail::isObject(json) ? json::detail::find(json, key) : &json;
    if (found) value.text = json::detail::textOf(*found).value_or("");
}
constexpr char idKey[] = "id";
constexpr char contentKey[] = "content";
using Link = Mixed<idKey>;
using Name = Mixed<contentKey>;
using Links = std::optional<std::vector<Link>>;

struct RijksmuseumSearchResponse {
    std::vector<Link> orderedItems;
    static void describe(auto& self, auto& io) { io.required("orderedItems", self.orderedItems); }
};
struct RijksmuseumLinkedRecord {
    std::string id;
    std::optional<std::vector<Name>> identifiedBy;
    Links shows;
    Links digitallyShownBy;
    Links accessPoint;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .optional("identified_by", self.identifiedBy)
            .optional("shows", self.shows)
            .optional("digitally_shown_by", self.digitallyShownBy)
            .optional("access_point", self.accessPoint);
    }
};
/// The first text of a list.
Text firstOf(const auto& list) {
    if (!list) return std::nullopt;
    for (const auto& element : *list) {
        if (element.text) return element.text;
    }
    return std::nullopt;
}

struct ClevelandImage {
    std::string url;
    static void describe(auto& self, auto& io) { io.required("url", self.url); }
};
struct ClevelandImages {
    std::optional<ClevelandImage> web;
    std::optional<ClevelandImage> print;
    static void describe(auto& self, auto& io) { io.optional("web", self.web).optional("print", self.print); }
};
struct ClevelandCreator {
    Text description;
    static void describe(auto& self, auto& io) { io.optional("description", self.description); }
};
struct ClevelandArtwork {
    std::int64_t id = 0;
    Text title;
    Text shareLicenseStatus;
    Text page;
    std::optional<std::vector<ClevelandCreator>> creators;
    std::optional<ClevelandImages> images;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .optional("title", self.title)
            .optional("share_license_status", self.shareLicenseStatus)
            .optional("url", self.page)
            .optional("creators", self.creators)
            .optional("images", self.images);
    }
};
struct ClevelandResponse {
    std::vector<ClevelandArtwork> data;
    static void describe(auto& self, auto& io) { io.required("data", self.data); }
};

struct SMKTitle {
    Text title;
    static void describe(auto& self, auto& io) { io.optional("title", self.title); }
};
struct SMKItem {
    std::string id;
    Text objectNumber;
    std::optional<std::vector<SMKTitle>> titles;
    std::optional<bool> isPublicDomain;
    Text imageIIIFID;
    Text imageThumbnail;
    Text page;
    Text rights;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .optional("object_number", self.objectNumber)
            .optional("titles", self.titles)
            .optional("public_domain", self.isPublicDomain)
            .optional("image_iiif_id", self.imageIIIFID)
            .optional("image_thumbnail", self.imageThumbnail)
            .optional("frontend_url", self.page)
            .optional("rights", self.rights);
    }
};
struct SMKResponse {
    std::vector<SMKItem> items;
    static void describe(auto& self, auto& io) { io.required("items", self.items); }
};

struct SmithsonianUsage {
    Text access;
    static void describe(auto& self, auto& io) { io.optional("access", self.access); }
};
struct SmithsonianMedium {
    std::string content;
    Text type;
    std::optional<SmithsonianUsage> usage;
    static void describe(auto& self, auto& io) {
        io.required("content", self.content).optional("type", self.type).optional("usage", self.usage);
    }
};
struct SmithsonianOnlineMedia {
    std::vector<SmithsonianMedium> media;
    static void describe(auto& self, auto& io) { io.required("media", self.media); }
};
struct SmithsonianDescription {
    std::optional<SmithsonianOnlineMedia> onlineMedia;
    Text page;
    static void describe(auto& self, auto& io) {
        io.optional("online_media", self.onlineMedia).optional("record_link", self.page);
    }
};
struct SmithsonianContent {
    std::optional<SmithsonianDescription> description;
    static void describe(auto& self, auto& io) { io.optional("descriptiveNonRepeating", self.description); }
};
struct SmithsonianRow {
    std::string id;
    Text title;
    SmithsonianContent content;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id).optional("title", self.title).required("content", self.content);
    }
};
struct SmithsonianResponse {
    std::vector<SmithsonianRow> rows;
    static void describe(auto& self, auto& io) { io.required("rows", self.rows); }
};
struct SmithsonianEnvelope {
    SmithsonianResponse response;
    static void describe(auto& self, auto& io) { io.required("response", self.response); }
};

std::optional<Url> parsedURL(const Text& text) { return text ? Url::parse(*text) : std::nullopt; }

/// What else may be known of a work.
struct Details {
    Text artist;
    Text page;
    Text licence;
};

MuseumArtwork artwork(MuseumsSource source, const std::string& id, const Text& title, Url image,
                      Details details) {
    const bool isTitled = title && !title->empty();
    return {.identity = std::string(identityPrefix(source)) + id,
            .title = isTitled ? *title : "Untitled",
            .imageURL = std::move(image),
            .source = source,
            .artist = unlessBlank(std::move(details.artist)),
            .page = webAddressText(details.page),
            .licence = unlessBlank(std::move(details.licence))};
}

std::optional<Url> imageOf(const SmithsonianRow& row) {
    const auto& description = row.content.description;
    if (!description || !description->onlineMedia) return std::nullopt;
    for (const SmithsonianMedium& medium : description->onlineMedia->media) {
        const bool isImage = lowercased(medium.type.value_or("")).contains("image");
        const bool isFree = medium.usage && lowercased(medium.usage->access.value_or("")) == "cc0";
        auto url = Url::parse(medium.content);
        if (isImage && isFree && url) return url;
    }
    return std::nullopt;
}

}  // namespace

std::vector<MuseumArtwork> parseArtInstitute(std::string_view json) {
    const auto response = json::decode<ArtInstituteResponse>(json);
    const auto base = Url::parse(response.config.iiifURL);
    const auto website = webAddress(response.config.websiteURL);
    std::vector<MuseumArtwork> artworks;
    for (const ArtInstituteArtwork& item : response.data) {
        if (!base || !item.imageID) continue;
        const std::string id = std::to_string(item.id);
        const Text page = website ? Text(appendingPath(*website, "artworks/" + id).string()) : std::nullopt;
        artworks.push_back(
            artwork(MuseumsSource::artInstituteChicago, id, item.title,
                    appendingPath(*base, escapedPathComponent(*item.imageID) + "/full/1686,/0/default.jpg"),
                    {item.artist, page, "CC0"}));
    }
    return artworks;
}

std::vector<std::int64_t> parseMetropolitanSearch(std::string_view json) {
    return json::decode<MetropolitanSearchResponse>(json).objectIDs.value_or(std::vector<std::int64_t>());
}

std::optional<MuseumArtwork> parseMetropolitanObject(std::string_view json) {
    const auto object = json::decode<MetropolitanObjectResponse>(json);
    auto image = parsedURL(object.primaryImageLarge);
    if (!image) image = parsedURL(object.primaryImage);
    if (!object.isPublicDomain || !image) return std::nullopt;
    return artwork(MuseumsSource::metropolitanMuseum, std::to_string(object.objectID), object.title,
                   *std::move(image), {object.artist, object.page, "CC0"});
}

std::vector<Url> parseRijksmuseumSearch(std::string_view json) {
    std::vector<Url> records;
    for (const Link& item : json::decode<RijksmuseumSearchResponse>(json).orderedItems) {
        if (auto url = parsedURL(item.text)) records.push_back(*std::move(url));
    }
    return records;
}

RijksmuseumRecord parseRijksmuseumRecord(std::string_view json) {
    auto linked = json::decode<RijksmuseumLinkedRecord>(json);
    RijksmuseumRecord record{.id = std::move(linked.id),
                             .title = firstOf(linked.identifiedBy).value_or(""),
                             .linkedID = firstOf(linked.shows)};
    if (!record.linkedID) record.linkedID = firstOf(linked.digitallyShownBy);
    for (const Link& point : linked.accessPoint.value_or(std::vector<Link>())) {
        if (!record.imageURL) record.imageURL = parsedURL(point.text);
    }
    return record;
}

MuseumArtwork rijksmuseumArtwork(const RijksmuseumRecord& first, const Url& image) {
    const std::size_t full = image.string().find("/full/");
    auto sized = full == std::string::npos
                     ? std::nullopt
                     : Url::parse(image.string().substr(0, full) + "/full/2000,/0/default.jpg");
    return artwork(MuseumsSource::rijksmuseum, first.id, first.title, sized.value_or(image),
                   {.page = first.id});
}

std::vector<MuseumArtwork> parseCleveland(std::string_view json) {
    std::vector<MuseumArtwork> artworks;
    for (const ClevelandArtwork& item : json::decode<ClevelandResponse>(json).data) {
        if (item.shareLicenseStatus != "CC0" || !item.images) continue;
        const auto& image = item.images->print ? item.images->print : item.images->web;
        auto url = image ? Url::parse(image->url) : std::nullopt;
        if (!url) continue;
        const bool isSigned = item.creators && !item.creators->empty();
        artworks.push_back(
            artwork(MuseumsSource::clevelandMuseum, std::to_string(item.id), item.title, *std::move(url),
                    {isSigned ? item.creators->front().description : std::nullopt, item.page, "CC0"}));
    }
    return artworks;
}

std::vector<MuseumArtwork> parseSMK(std::string_view json) {
    std::vector<MuseumArtwork> artworks;
    for (const SMKItem& item : json::decode<SMKResponse>(json).items) {
        if (item.isPublicDomain != true) continue;
        auto image = parsedURL(item.imageIIIFID);
        image = image ? appendingPath(*image, "full/2000,/0/default.jpg") : parsedURL(item.imageThumbnail);
        if (!image) continue;
        const Text title = item.titles && !item.titles->empty() ? item.titles->front().title : std::nullopt;
        artworks.push_back(artwork(MuseumsSource::smkDenmark, item.id, title ? title : item.objectNumber,
                                   *std::move(image), {{}, item.page, item.rights}));
    }
    return artworks;
}

std::vector<MuseumArtwork> parseSmithsonian(std::string_view json) {
    std::vector<MuseumArtwork> artworks;
    for (const SmithsonianRow& row : json::decode<SmithsonianEnvelope>(json).response.rows) {
        if (auto image = imageOf(row)) {
            artworks.push_back(artwork(MuseumsSource::smithsonian, row.id, row.title, *std::move(image),
                                       {{}, row.content.description->page, "CC0"}));
        }
    }
    return artworks;
}

}  // namespace quillmar
