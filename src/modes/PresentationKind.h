#pragma once
#include <optional>
#include <string_view>

#include "base/Localization.h"
#include "modes/CaseNames.h"

namespace quillmar {

/// Every kind of thing that a display can show. A case is called as its key in the settings document.
enum class PresentationKind {
    disabled,
    solidColor,
    colorFader,
    image,
    slideshow,
    apod,
    nasaEpic,
    wallhaven,
    unsplash,
    bing,
    windowsSpotlight,
    museums,
    webpage,
    video,
    videoPlaylist,
    pdf,
    matrix,
    hexells,
    shadertoy,
    alarmClock,
    countdownTimer,
    stopwatch
};

/// What it takes to show a kind.
enum class PresentationNature {
    nothing,  ///< the display is left alone
    still,    ///< a picture that is drawn here, from a colour or a file of the user
    service,  ///< a picture that a service sends
    live      ///< a window that draws itself
};

/// Everything that a kind is called or needs.
struct PresentationKindRow {
    PresentationKind kind;
    PresentationNature nature;
    std::string_view word;  ///< on the command line; empty: it is given there as a whole mode only
    TextKey title;
    std::optional<TextKey> wallpaperSubtitle = {};  ///< absent: wallpapers have no such kind
    std::optional<TextKey> lockScreenSubtitle = {};
    std::optional<TextKey> screensaverSubtitle = {};
    std::string_view imageAssetName;      ///< preview picture
    std::string_view systemImage;         ///< symbol, to be mapped to the desktop's icons
    std::optional<TextKey> service = {};  ///< what people call the service
    std::string_view editor = "";         ///< the view that edits its settings; empty: none is there yet
};

/// The kind's row of the one table.
const PresentationKindRow& rowOf(PresentationKind kind);

/// For every case of another enumeration the kind of the table that is called so.
template <class Kind>
inline constexpr auto presentationKinds = [] {
    std::array<PresentationKind, caseCount<Kind>()> kinds{};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        std::size_t at = 0;
        // A name that is in no row ends beyond the table, which no constant expression may.
        while (caseNames<PresentationKind>.at(at) != caseNames<Kind>[i]) ++at;
        kinds[i] = static_cast<PresentationKind>(at);
    }
    return kinds;
}();
template <class Kind>
constexpr PresentationKind presentationKind(Kind kind) {
    return presentationKinds<Kind>[static_cast<std::size_t>(kind)];
}

constexpr auto enumNames(PresentationKind) { return caseNames<PresentationKind>; }

template <class Kind>
TextKey title(Kind kind) {
    return rowOf(presentationKind(kind)).title;
}
template <class Kind>
PresentationNature natureOf(Kind kind) {
    return rowOf(presentationKind(kind)).nature;
}
/// Whether its pictures come from a picture service.
template <class Kind>
bool isRemote(Kind kind) {
    return natureOf(kind) == PresentationNature::service;
}
/// Whether what it shows is a picture, wherever that comes from.
template <class Kind>
bool isStill(Kind kind) {
    return natureOf(kind) == PresentationNature::still || isRemote(kind);
}

}  // namespace quillmar
