#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "async/Task.h"
#include "base/Enum.h"
#include "base/HexColor.h"
#include "base/PixelBuffer.h"
#include "platform/Screens.h"

namespace quillmar {

/// What the desktop wants to know about a picture besides its file; its own keys and values.
using DesktopImageOptions = std::map<std::string, std::string>;

/// A picture for a screen.
struct DesktopImage {
    std::filesystem::path file;  ///< by which it is known; with `pixels` it need not be written yet
    SharedPixels pixels;         ///< in the screen's size; null: they are in the file alone
};

/// What a screen shows as far as the desktop knows.
struct PresentDesktopImage {
    /// That is still there, whoever has set it; absent when no file is known.
    std::optional<std::filesystem::path> file;
    /// The desktop has lost what it was given for this screen: with the session, when the monitor was
    /// unplugged, or when the monitors were moved. False where somebody else has set another picture since.
    bool isForgotten = false;
    bool operator==(const PresentDesktopImage&) const = default;
};

/// The picture behind everything on a screen, in the way of the desktop that runs. Main thread; what waits
/// for the desktop does so elsewhere, one operation after the other in the order of the calls. Every
/// operation throws `DesktopPictureError` when the desktop refuses or does not answer.
class DesktopPicturing {
public:
    virtual ~DesktopPicturing() = default;
    /// Whether `setDesktopImage` wants the pixels; else it wants a PNG file that is there.
    virtual bool takesPixels() const = 0;
    /// Makes the picture that of the screen and of no other. `options` are empty, or what
    /// `desktopImageOptions` has given for that file. A failure may leave the screen half changed.
    virtual Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) = 0;
    /// Changes nothing.
    virtual Task<PresentDesktopImage> desktopImage(Screen screen) = 0;
    /// The file of `desktopImage`, and where none is known one that what the screen shows now is captured to:
    /// setting it again brings that back. Absent when there is none to be had.
    virtual Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) = 0;
    /// The options that go with either, to be handed back when the file is set again.
    virtual Task<DesktopImageOptions> desktopImageOptions(Screen screen) = 0;
};

/// The one picture that some desktops lay over all their screens. Main thread, as `DesktopPicturing`.
class SpannedDesktopPicturing {
public:
    /// How such a desktop lays out a picture of its own.
    enum class Layout { none, tile, center, fit, stretch, fill, spanned };
    struct Present {
        std::filesystem::path file;    ///< whether it is there or not; empty for none
        DesktopImageOptions options;   ///< that go with it
        Layout layout = Layout::none;  ///< that these options mean
        RgbColor color;                ///< what is around the picture
    };
    virtual ~SpannedDesktopPicturing() = default;
    virtual Task<Present> present() = 0;
    /// Lays the file over all screens at once; with `options` that `present` has given, as these say. A
    /// failure changes nothing.
    virtual Task<void> set(std::filesystem::path file, std::optional<DesktopImageOptions> options) = 0;
};

constexpr auto enumNames(SpannedDesktopPicturing::Layout) {
    return std::to_array<std::string_view>({"none", "tile", "center", "fit", "stretch", "fill", "spanned"});
}

/// How the running desktop takes its pictures.
struct DesktopMethods {
    DesktopPicturing& screens;                   ///< a picture for each screen
    SpannedDesktopPicturing* spanned = nullptr;  ///< not null: pictures are set through this, and `screens`
                                                 ///< only captures what no file is known for
};

/// Finds out which desktop runs. Main thread.
class DesktopChoosing {
public:
    virtual ~DesktopChoosing() = default;
    /// The same answer each time, found at the first call; what it names lives as long as this.
    virtual Task<DesktopMethods> methods() = 0;
};

}  // namespace quillmar
