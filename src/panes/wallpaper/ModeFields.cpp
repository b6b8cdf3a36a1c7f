#include "panes/wallpaper/ModeFields.h"

#include <array>

#include "base/Enum.h"

namespace quillmar {
namespace {

using Case = WallpaperApplicationError::Case;
using Need = FieldText::Need;
using Groups = std::vector<FieldGroupText>;

constexpr auto ownFields = std::to_array<std::string_view>(
    {"cachedImageURL", "imageBookmark", "folderBookmark", "lastImageURL", "lastSelection"});

/// How the picture is laid out; `note` is the field that writes something over it.
FieldGroupText pictureGroup(std::optional<FieldText> note = {}) {
    FieldGroupText group{"picture",
                         "Picture"_key,
                         {{.field = "layout", .title = "Layout"_key},
                          {.field = "backgroundHexColor",
                           .title = "Background"_key,
                           .subtitle = "Shows wherever the picture does not reach."_key,
                           .control = FieldControl::color}}};
    if (note) group.fields.push_back(*std::move(note));
    return group;
}

FieldText interval(std::optional<Need> need, Case problem) {
    return {.field = "rotationIntervalSeconds",
            .title = "Change every"_key,
            .subtitle = "Hours, minutes, seconds."_key,
            .control = FieldControl::duration,
            .need = need,
            .problems = {problem}};
}

FieldText serviceInterval(std::string_view toggle) {
    return interval(Need{toggle, "true"}, Case::invalidRemoteRotationInterval);
}

FieldGroupText changeGroup() {
    return {"change",
            "Change"_key,
            {{.field = "switchAutomatically", .title = "Change by itself"_key},
             serviceInterval("switchAutomatically")}};
}

Groups solidColorGroups() {
    return {{"color",
             "Color"_key,
             {{.field = "hexColor",
               .title = "Color"_key,
               .control = FieldControl::color,
               .problems = {Case::invalidSolidColor}}}}};
}

Groups imageGroups() {
    return {{"file",
             "Image"_key,
             {{.field = "imageURL",
               .title = "Image file"_key,
               .problems = {Case::missingImage, Case::unreadableImage}}}},
            pictureGroup()};
}

Groups slideshowGroups() {
    return {{"file",
             "Folder"_key,
             {{.field = "folderURL", .title = "Folder"_key, .problems = {Case::missingSlideshowFolder}},
              {.field = "includeSubfolders", .title = "Include subfolders"_key}}},
            {"change",
             "Change"_key,
             {interval({}, Case::invalidSlideshowInterval),
              {.field = "shuffle",
               .title = "Shuffle"_key,
               .subtitle = "In any order instead of that of their names."_key}}},
            pictureGroup()};
}

Groups apodGroups() {
    return {{"service",
             "NASA APOD"_key,
             {{.field = "apiKey",
               .title = "API key"_key,
               .subtitle = "DEMO_KEY is good for a few pictures a day."_key,
               .control = FieldControl::secret},
              {.field = "useHDImage", .title = "High resolution"_key}}},
            {"change",
             "Change"_key,
             {{.field = "switchPeriodically",
               .title = "Pictures of other days"_key,
               .subtitle = "Any day’s picture, changed by itself, instead of the latest one."_key},
              serviceInterval("switchPeriodically")}},
            pictureGroup(FieldText{.field = "showsInformation", .title = "Show title and author"_key})};
}

Groups nasaEpicGroups() {
    const Need rotates{"presentation", "rotateThroughDays"};
    return {{"service",
             "NASA EPIC"_key,
             {{.field = "presentation", .title = "Show"_key},
              {.field = "secondsPerObservation",
               .title = "Each picture for"_key,
               .subtitle = "Hours, minutes, seconds."_key,
               .control = FieldControl::duration,
               .need = rotates,
               .problems = {Case::invalidNasaEpicObservationDuration},
               .minimum = 10},
              {.field = "recentDays",
               .title = "Days back"_key,
               .need = rotates,
               .problems = {Case::invalidNasaEpicRecentDays},
               .maximum = 7},
              {.field = "imageProduct", .title = "Colors"_key},
              {.field = "usesFullResolutionPNG",
               .title = "Full resolution"_key,
               .subtitle = "Several times as much to download."_key}}},
            pictureGroup(
                FieldText{.field = "showsCreditAndObservationTime", .title = "Show credit and time"_key})};
}

Groups wallhavenGroups() {
    return {{"service",
             "Wallhaven"_key,
             {{.field = "searchQuery",
               .title = "Search for"_key,
               .subtitle = "Words or #tags; anything if it is empty."_key},
              {.field = "sorting", .title = "Sort by"_key},
              {.field = "topRange", .title = "Toplist of"_key, .need = Need{"sorting", "toplist"}},
              {.field = "order", .title = "Order"_key},
              {.field = "apiKey",
               .title = "API key"_key,
               .subtitle = "Of your account; only pictures marked NSFW need one."_key,
               .control = FieldControl::secret,
               .problems = {Case::missingWallhavenNSFWAPIKey}}}},
            {"categories",
             "Categories"_key,
             {{.field = "includeGeneral",
               .title = "General pictures"_key,
               .problems = {Case::emptyWallhavenCategories}},
              {.field = "includeAnime", .title = "Anime"_key},
              {.field = "includePeople", .title = "People"_key}}},
            {"purity",
             "Purity"_key,
             {{.field = "includeSafe", .title = "Safe"_key, .problems = {Case::emptyWallhavenPurities}},
              {.field = "includeSketchy", .title = "Sketchy"_key},
              {.field = "includeNSFW", .title = "NSFW"_key}}},
            {"sizes",
             "Sizes and Colors"_key,
             {{.field = "color", .title = "Main color"_key, .control = FieldControl::palette},
              {.field = "resolutionMode", .title = "Resolution"_key},
              {.field = "resolution",
               .title = "Smallest resolution"_key,
               .need = Need{"resolutionMode", "atleast"}}}},
            {"resolutions",
             "Resolutions"_key,
             {{.field = "exactResolutions",
               .title = "Resolutions"_key,
               .need = Need{"resolutionMode", "exactly"}}},
             true},
            {"ratios", "Proportions"_key, {{.field = "ratios", .title = "Proportions"_key}}, true},
            changeGroup(),
            pictureGroup()};
}

Groups unsplashGroups() {
    const std::vector<Case> value{Case::missingUnsplashFilterValue};
    return {
        {"service",
         "Unsplash"_key,
         {{.field = "accessKey",
           .title = "Access key"_key,
           .subtitle = "Of an application that you registered with Unsplash."_key,
           .control = FieldControl::secret,
           .problems = {Case::missingUnsplashAccessKey}},
          {.field = "filter", .title = "Photos of"_key},
          {.field = "topicSlug",
           .title = "Topic"_key,
           .subtitle = "As in its address, such as “wallpapers”."_key,
           .need = Need{"filter", "topic"},
           .problems = value},
          {.field = "username", .title = "User name"_key, .need = Need{"filter", "user"}, .problems = value},
          {.field = "searchQuery",
           .title = "Search for"_key,
           .need = Need{"filter", "search"},
           .problems = value}}},
        changeGroup(),
        pictureGroup(FieldText{.field = "showsAttribution", .title = "Show the photographer"_key})};
}

Groups bingGroups() {
    return {{"service", "Bing"_key, {{.field = "market", .title = "Country"_key}}},
            pictureGroup(FieldText{.field = "showsCopyright", .title = "Show copyright"_key})};
}

Groups windowsSpotlightGroups() {
    return {{"service", "Windows Spotlight"_key, {{.field = "locale", .title = "Country"_key}}},
            {"change", "Change"_key, {interval({}, Case::invalidRemoteRotationInterval)}},
            pictureGroup(FieldText{.field = "showsCopyright", .title = "Show copyright"_key})};
}

Groups museumsGroups() {
    return {
        {"service",
         "Museums"_key,
         {{.field = "sources", .title = "Museums"_key, .problems = {Case::emptyMuseumsSources}},
          {.field = "smithsonianAPIKey",
           .title = "Smithsonian API key"_key,
           .subtitle = "Free of charge at api.data.gov."_key,
           .control = FieldControl::secret,
           .need = Need{"sources", "smithsonian"},
           .problems = {Case::missingSmithsonianAPIKey}}}},
        {"artworks",
         "Artworks"_key,
         {{.field = "useAllCategories", .title = "Of all kinds"_key},
          {.field = "categories",
           .title = "Artworks"_key,
           .need = Need{"useAllCategories", "false"},
           .problems = {Case::emptyMuseumsCategories}}}},
        changeGroup(),
        pictureGroup(FieldText{.field = "showsArtworkInformation", .title = "Show title and artist"_key})};
}

Groups groupsOf(WallpaperModeKind kind) {
    using enum WallpaperModeKind;
    switch (kind) {
        case solidColor: return solidColorGroups();
        case image: return imageGroups();
        case slideshow: return slideshowGroups();
        case apod: return apodGroups();
        case nasaEpic: return nasaEpicGroups();
        case wallhaven: return wallhavenGroups();
        case unsplash: return unsplashGroups();
        case bing: return bingGroups();
        case windowsSpotlight: return windowsSpotlightGroups();
        case museums: return museumsGroups();
        case disabled:
        case colorFader:
        case webpage:
        case video:
        case videoPlaylist:
        case pdf:
        case matrix:
        case hexells: return {};
    }
    return {};
}

}  // namespace

std::span<const FieldGroupText> fieldGroups(WallpaperModeKind kind) {
    static const std::vector<Groups> table = [] {
        std::vector<Groups> groups;
        for (const WallpaperModeKind each : allCases<WallpaperModeKind>()) groups.push_back(groupsOf(each));
        return groups;
    }();
    return table[static_cast<std::size_t>(kind)];
}

std::span<const std::string_view> programFields() { return ownFields; }

}  // namespace quillmar
