#include "modes/ModeOptions.h"

#include <algorithm>
#include <array>

#include "base/Enum.h"

namespace quillmar {
namespace {

constexpr auto wallpaperOptions = std::to_array<WallpaperModeOption>({
    {WallpaperModeKind::disabled, "Disabled"_key, "Do not manage wallpaper for this display"_key, "disabled",
     "nosign"},
    {WallpaperModeKind::solidColor, "Solid Color"_key, "Display a solid color background"_key, "solidcolor",
     "circle.lefthalf.filled"},
    {WallpaperModeKind::colorFader, "Color Fader"_key, "Smoothly fade between colors as a live wallpaper"_key,
     "colorfader", "swatchpalette.fill"},
    {WallpaperModeKind::image, "Image"_key, "Display a single image"_key, "image", "photo"},
    {WallpaperModeKind::slideshow, "Slideshow"_key, "Rotate through images in a folder"_key, "slideshow",
     "photo.stack"},
    {WallpaperModeKind::apod, "NASA Astronomy Picture of the Day"_key,
     "NASA's Astronomy Picture of the Day"_key, "apod", "sparkles"},
    {WallpaperModeKind::nasaEpic, "NASA EPIC Earth"_key, "Sunlit full-disc Earth imagery from NASA"_key,
     "nasaepic", "globe.americas.fill"},
    {WallpaperModeKind::wallhaven, "Wallhaven"_key, "Wallpapers from Wallhaven"_key, "wallhaven",
     "photo.on.rectangle"},
    {WallpaperModeKind::unsplash, "Unsplash"_key, "Random photos from Unsplash"_key, "unsplash", "camera"},
    {WallpaperModeKind::bing, "Bing Image of the Day"_key, "Bing daily wallpaper"_key, "bing", "b.circle"},
    {WallpaperModeKind::windowsSpotlight, "Windows Spotlight"_key, "Featured Windows Spotlight wallpaper"_key,
     "windowsspotlight", "rectangle.inset.filled"},
    {WallpaperModeKind::museums, "Museums"_key, "Public-domain artwork from leading museum collections"_key,
     "museums", "building.columns"},
    {WallpaperModeKind::video, "Video"_key, "Play a video file as a live wallpaper"_key, "video",
     "play.rectangle"},
    {WallpaperModeKind::videoPlaylist, "Video Playlist"_key,
     "Play videos from a folder as a live wallpaper"_key, "videoplaylist", "rectangle.stack.badge.play"},
    {WallpaperModeKind::pdf, "PDF"_key, "Display a PDF file as a live wallpaper"_key, "pdf", "doc.richtext"},
    {WallpaperModeKind::matrix, "Matrix"_key, "Animated falling green glyphs as a live wallpaper"_key,
     "matrix", "textformat.abc.dottedunderline"},
    {WallpaperModeKind::webpage, "Webpage"_key, "Display a live webpage as wallpaper"_key, "webpage",
     "globe"},
    {WallpaperModeKind::hexells, "Hexells"_key, "Colorful animated hexagonal cells as a live wallpaper"_key,
     "hexells", "hexagon.fill"},
});

constexpr auto lockScreenOptions = std::to_array<LockScreenModeOption>({
    {LockScreenModeKind::disabled, "Disabled"_key, "Do not override the Lock Screen for this display"_key,
     "disabled", "nosign"},
    {LockScreenModeKind::solidColor, "Solid Color"_key, "Display a solid color background"_key, "solidcolor",
     "circle.lefthalf.filled"},
    {LockScreenModeKind::image, "Image"_key, "Display a single image"_key, "image", "photo"},
    {LockScreenModeKind::slideshow, "Slideshow"_key, "Rotate through images in a folder"_key, "slideshow",
     "photo.stack"},
    {LockScreenModeKind::apod, "NASA Astronomy Picture of the Day"_key,
     "NASA's Astronomy Picture of the Day"_key, "apod", "sparkles"},
    {LockScreenModeKind::nasaEpic, "NASA EPIC Earth"_key, "Sunlit full-disc Earth imagery from NASA"_key,
     "nasaepic", "globe.americas.fill"},
    {LockScreenModeKind::museums, "Museums"_key, "Public-domain artwork from leading museum collections"_key,
     "museums", "building.columns"},
    {LockScreenModeKind::unsplash, "Unsplash"_key, "Random photos from Unsplash"_key, "unsplash", "camera"},
    {LockScreenModeKind::wallhaven, "Wallhaven"_key, "Wallpapers from Wallhaven"_key, "wallhaven",
     "photo.on.rectangle"},
    {LockScreenModeKind::bing, "Bing Image of the Day"_key, "Bing daily wallpaper"_key, "bing", "b.circle"},
    {LockScreenModeKind::windowsSpotlight, "Windows Spotlight"_key,
     "Featured Windows Spotlight wallpaper"_key, "windowsspotlight", "rectangle.inset.filled"},
});

constexpr auto screensaverOptions = std::to_array<ScreensaverModeOption>({
    {ManagedScreensaverModeKind::disabled, "Disabled"_key, "Do not present a screensaver on this display"_key,
     "disabled", "nosign"},
    {ManagedScreensaverModeKind::solidColor, "Solid Color"_key, "Fill the display with one color"_key,
     "solidcolor", "circle.lefthalf.filled"},
    {ManagedScreensaverModeKind::colorFader, "Color Fader"_key,
     "Smoothly animate through a color palette"_key, "colorfader", "swatchpalette.fill"},
    {ManagedScreensaverModeKind::image, "Image"_key, "Present a single local image"_key, "image", "photo"},
    {ManagedScreensaverModeKind::slideshow, "Slideshow"_key, "Rotate images from a local folder"_key,
     "slideshow", "photo.stack"},
    {ManagedScreensaverModeKind::apod, "NASA Astronomy Picture of the Day"_key,
     "NASA Astronomy Picture of the Day"_key, "apod", "sparkles"},
    {ManagedScreensaverModeKind::nasaEpic, "NASA EPIC Earth"_key,
     "Sunlit full-disc Earth imagery from NASA"_key, "nasaepic", "globe.americas.fill"},
    {ManagedScreensaverModeKind::wallhaven, "Wallhaven"_key, "Images selected from Wallhaven"_key,
     "wallhaven", "photo.on.rectangle"},
    {ManagedScreensaverModeKind::unsplash, "Unsplash"_key, "Random photography from Unsplash"_key, "unsplash",
     "camera"},
    {ManagedScreensaverModeKind::bing, "Bing Image of the Day"_key, "Bing's daily image"_key, "bing",
     "b.circle"},
    {ManagedScreensaverModeKind::windowsSpotlight, "Windows Spotlight"_key,
     "Featured Windows Spotlight imagery"_key, "windowsspotlight", "rectangle.inset.filled"},
    {ManagedScreensaverModeKind::museums, "Museums"_key, "Artwork from public museum collections"_key,
     "museums", "building.columns"},
    {ManagedScreensaverModeKind::webpage, "Webpage"_key, "Present a live webpage"_key, "webpage", "globe"},
    {ManagedScreensaverModeKind::video, "Video"_key, "Play one local video"_key, "video", "play.rectangle"},
    {ManagedScreensaverModeKind::videoPlaylist, "Video Playlist"_key, "Play videos from a local folder"_key,
     "videoplaylist", "rectangle.stack.badge.play"},
    {ManagedScreensaverModeKind::pdf, "PDF"_key, "Present a local PDF document"_key, "pdf", "doc.richtext"},
    {ManagedScreensaverModeKind::matrix, "Matrix"_key, "Animated falling glyphs"_key, "matrix",
     "textformat.abc.dottedunderline"},
    {ManagedScreensaverModeKind::hexells, "Hexells"_key, "Animated interactive hexagonal cells"_key,
     "hexells", "hexagon.fill"},
    {ManagedScreensaverModeKind::shadertoy, "Shadertoy"_key, "Render a Shadertoy shader"_key, "shadertoy",
     "viewfinder.circle.fill"},
    {ManagedScreensaverModeKind::alarmClock, "Alarm Clock"_key,
     "Show the current time with an optional alarm"_key, "alarmclock", "alarm.fill"},
    {ManagedScreensaverModeKind::countdownTimer, "Countdown Timer"_key,
     "Count down from a selected duration"_key, "timer", "timer"},
    {ManagedScreensaverModeKind::stopwatch, "Stopwatch"_key,
     "Measure elapsed time with start and reset controls"_key, "stopwatch", "stopwatch.fill"},
});

/// Whether the table has a row for every kind, so that looking one up cannot fail.
template <class Kind, class Table>
constexpr bool isComplete(const Table& table) {
    return table.size() == allCases<Kind>().size() && std::ranges::all_of(allCases<Kind>(), [&](Kind kind) {
               return std::ranges::any_of(table, [&](const auto& option) { return option.kind == kind; });
           });
}
static_assert(isComplete<WallpaperModeKind>(wallpaperOptions));
static_assert(isComplete<LockScreenModeKind>(lockScreenOptions));
static_assert(isComplete<ManagedScreensaverModeKind>(screensaverOptions));

template <class Kind>
TextKey titleIn(std::span<const ModeOption<Kind>> options, Kind kind) {
    return std::ranges::find(options, kind, &ModeOption<Kind>::kind)->title;
}

}  // namespace

std::span<const WallpaperModeOption> wallpaperModeOptions() { return wallpaperOptions; }
std::span<const LockScreenModeOption> lockScreenModeOptions() { return lockScreenOptions; }
std::span<const ScreensaverModeOption> screensaverModeOptions() { return screensaverOptions; }

TextKey title(WallpaperModeKind kind) { return titleIn(wallpaperModeOptions(), kind); }
TextKey title(LockScreenModeKind kind) { return titleIn(lockScreenModeOptions(), kind); }
TextKey title(ManagedScreensaverModeKind kind) { return titleIn(screensaverModeOptions(), kind); }

}  // namespace quillmar
