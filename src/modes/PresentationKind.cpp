#include "modes/PresentationKind.h"

#include <array>

#include "modes/LockScreenMode.h"
#include "modes/ManagedScreensaverModeKind.h"
#include "modes/WallpaperModeKind.h"

namespace quillmar {
namespace {

using Kind = PresentationKind;
using Nature = PresentationNature;

/// In the order of the kinds.
constexpr auto table = std::to_array<PresentationKindRow>({
    {.kind = Kind::disabled,
     .nature = Nature::nothing,
     .word = "disabled",
     .title = "Disabled"_key,
     .wallpaperSubtitle = "Do not manage wallpaper for this display"_key,
     .lockScreenSubtitle = "Do not override the Lock Screen for this display"_key,
     .screensaverSubtitle = "Do not present a screensaver on this display"_key,
     .imageAssetName = "disabled",
     .systemImage = "nosign"},
    {.kind = Kind::solidColor,
     .nature = Nature::still,
     .word = "colour",
     .title = "Solid Color"_key,
     .wallpaperSubtitle = "Display a solid color background"_key,
     .lockScreenSubtitle = "Display a solid color background"_key,
     .screensaverSubtitle = "Fill the display with one color"_key,
     .imageAssetName = "solidcolor",
     .systemImage = "circle.lefthalf.filled"},
    {.kind = Kind::colorFader,
     .nature = Nature::live,
     .word = "",
     .title = "Color Fader"_key,
     .wallpaperSubtitle = "Smoothly fade between colors as a live wallpaper"_key,
     .screensaverSubtitle = "Smoothly animate through a color palette"_key,
     .imageAssetName = "colorfader",
     .systemImage = "swatchpalette.fill"},
    {.kind = Kind::image,
     .nature = Nature::still,
     .word = "image",
     .title = "Image"_key,
     .wallpaperSubtitle = "Display a single image"_key,
     .lockScreenSubtitle = "Display a single image"_key,
     .screensaverSubtitle = "Present a single local image"_key,
     .imageAssetName = "image",
     .systemImage = "photo"},
    {.kind = Kind::slideshow,
     .nature = Nature::still,
     .word = "slideshow",
     .title = "Slideshow"_key,
     .wallpaperSubtitle = "Rotate through images in a folder"_key,
     .lockScreenSubtitle = "Rotate through images in a folder"_key,
     .screensaverSubtitle = "Rotate images from a local folder"_key,
     .imageAssetName = "slideshow",
     .systemImage = "photo.stack"},
    {.kind = Kind::apod,
     .nature = Nature::service,
     .word = "apod",
     .title = "NASA Astronomy Picture of the Day"_key,
     .wallpaperSubtitle = "NASA's Astronomy Picture of the Day"_key,
     .lockScreenSubtitle = "NASA's Astronomy Picture of the Day"_key,
     .screensaverSubtitle = "NASA Astronomy Picture of the Day"_key,
     .imageAssetName = "apod",
     .systemImage = "sparkles",
     .service = "NASA APOD"_key},
    {.kind = Kind::nasaEpic,
     .nature = Nature::service,
     .word = "nasa-epic",
     .title = "NASA EPIC Earth"_key,
     .wallpaperSubtitle = "Sunlit full-disc Earth imagery from NASA"_key,
     .lockScreenSubtitle = "Sunlit full-disc Earth imagery from NASA"_key,
     .screensaverSubtitle = "Sunlit full-disc Earth imagery from NASA"_key,
     .imageAssetName = "nasaepic",
     .systemImage = "globe.americas.fill",
     .service = "NASA EPIC"_key},
    {.kind = Kind::wallhaven,
     .nature = Nature::service,
     .word = "wallhaven",
     .title = "Wallhaven"_key,
     .wallpaperSubtitle = "Wallpapers from Wallhaven"_key,
     .lockScreenSubtitle = "Wallpapers from Wallhaven"_key,
     .screensaverSubtitle = "Images selected from Wallhaven"_key,
     .imageAssetName = "wallhaven",
     .systemImage = "photo.on.rectangle",
     .service = "Wallhaven"_key},
    {.kind = Kind::unsplash,
     .nature = Nature::service,
     .word = "unsplash",
     .title = "Unsplash"_key,
     .wallpaperSubtitle = "Random photos from Unsplash"_key,
     .lockScreenSubtitle = "Random photos from Unsplash"_key,
     .screensaverSubtitle = "Random photography from Unsplash"_key,
     .imageAssetName = "unsplash",
     .systemImage = "camera",
     .service = "Unsplash"_key},
    {.kind = Kind::bing,
     .nature = Nature::service,
     .word = "bing",
     .title = "Bing Image of the Day"_key,
     .wallpaperSubtitle = "Bing daily wallpaper"_key,
     .lockScreenSubtitle = "Bing daily wallpaper"_key,
     .screensaverSubtitle = "Bing's daily image"_key,
     .imageAssetName = "bing",
     .systemImage = "b.circle",
     .service = "Bing"_key},
    {.kind = Kind::windowsSpotlight,
     .nature = Nature::service,
     .word = "spotlight",
     .title = "Windows Spotlight"_key,
     .wallpaperSubtitle = "Featured Windows Spotlight wallpaper"_key,
     .lockScreenSubtitle = "Featured Windows Spotlight wallpaper"_key,
     .screensaverSubtitle = "Featured Windows Spotlight imagery"_key,
     .imageAssetName = "windowsspotlight",
     .systemImage = "rectangle.inset.filled",
     .service = "Windows Spotlight"_key},
    {.kind = Kind::museums,
     .nature = Nature::service,
     .word = "museums",
     .title = "Museums"_key,
     .wallpaperSubtitle = "Public-domain artwork from leading museum collections"_key,
     .lockScreenSubtitle = "Public-domain artwork from leading museum collections"_key,
     .screensaverSubtitle = "Artwork from public museum collections"_key,
     .imageAssetName = "museums",
     .systemImage = "building.columns",
     .service = "Museums"_key},
    {.kind = Kind::webpage,
     .nature = Nature::live,
     .word = "",
     .title = "Webpage"_key,
     .wallpaperSubtitle = "Display a live webpage as wallpaper"_key,
     .screensaverSubtitle = "Present a live webpage"_key,
     .imageAssetName = "webpage",
     .systemImage = "globe"},
    {.kind = Kind::video,
     .nature = Nature::live,
     .word = "",
     .title = "Video"_key,
     .wallpaperSubtitle = "Play a video file as a live wallpaper"_key,
     .screensaverSubtitle = "Play one local video"_key,
     .imageAssetName = "video",
     .systemImage = "play.rectangle"},
    {.kind = Kind::videoPlaylist,
     .nature = Nature::live,
     .word = "",
     .title = "Video Playlist"_key,
     .wallpaperSubtitle = "Play videos from a folder as a live wallpaper"_key,
     .screensaverSubtitle = "Play videos from a local folder"_key,
     .imageAssetName = "videoplaylist",
     .systemImage = "rectangle.stack.badge.play"},
    {.kind = Kind::pdf,
     .nature = Nature::live,
     .word = "",
     .title = "PDF"_key,
     .wallpaperSubtitle = "Display a PDF file as a live wallpaper"_key,
     .screensaverSubtitle = "Present a local PDF document"_key,
     .imageAssetName = "pdf",
     .systemImage = "doc.richtext"},
    {.kind = Kind::matrix,
     .nature = Nature::live,
     .word = "",
     .title = "Matrix"_key,
     .wallpaperSubtitle = "Animated falling green glyphs as a live wallpaper"_key,
     .screensaverSubtitle = "Animated falling glyphs"_key,
     .imageAssetName = "matrix",
     .systemImage = "textformat.abc.dottedunderline"},
    {.kind = Kind::hexells,
     .nature = Nature::live,
     .word = "",
     .title = "Hexells"_key,
     .wallpaperSubtitle = "Colorful animated hexagonal cells as a live wallpaper"_key,
     .screensaverSubtitle = "Animated interactive hexagonal cells"_key,
     .imageAssetName = "hexells",
     .systemImage = "hexagon.fill"},
    {.kind = Kind::shadertoy,
     .nature = Nature::live,
     .word = "",
     .title = "Shadertoy"_key,
     .screensaverSubtitle = "Render a Shadertoy shader"_key,
     .imageAssetName = "shadertoy",
     .systemImage = "viewfinder.circle.fill"},
    {.kind = Kind::alarmClock,
     .nature = Nature::live,
     .word = "",
     .title = "Alarm Clock"_key,
     .screensaverSubtitle = "Show the current time with an optional alarm"_key,
     .imageAssetName = "alarmclock",
     .systemImage = "alarm.fill"},
    {.kind = Kind::countdownTimer,
     .nature = Nature::live,
     .word = "",
     .title = "Countdown Timer"_key,
     .screensaverSubtitle = "Count down from a selected duration"_key,
     .imageAssetName = "timer",
     .systemImage = "timer"},
    {.kind = Kind::stopwatch,
     .nature = Nature::live,
     .word = "",
     .title = "Stopwatch"_key,
     .screensaverSubtitle = "Measure elapsed time with start and reset controls"_key,
     .imageAssetName = "stopwatch",
     .systemImage = "stopwatch.fill"},
});

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].kind != static_cast<Kind>(i)) return false;
    }
    return true;
}
static_assert(table.size() == caseCount<Kind>(), "a kind has no row of the table");
static_assert(isInOrder());

/// Whether those rows, and no others, say what the kind is for where the enumeration's kinds are offered.
template <class Offered>
constexpr bool isOffered(std::optional<TextKey> PresentationKindRow::* subtitle) {
    std::array<bool, table.size()> offered{};
    for (std::size_t i = 0; i < caseCount<Offered>(); ++i) {
        offered[static_cast<std::size_t>(presentationKind(static_cast<Offered>(i)))] = true;
    }
    for (std::size_t i = 0; i < table.size(); ++i) {
        if ((table[i].*subtitle).has_value() != offered[i]) return false;
    }
    return true;
}
static_assert(isOffered<WallpaperModeKind>(&PresentationKindRow::wallpaperSubtitle));
static_assert(isOffered<LockScreenModeKind>(&PresentationKindRow::lockScreenSubtitle));
static_assert(isOffered<ManagedScreensaverModeKind>(&PresentationKindRow::screensaverSubtitle));

}  // namespace

const PresentationKindRow& rowOf(PresentationKind kind) { return table[static_cast<std::size_t>(kind)]; }

}  // namespace quillmar
