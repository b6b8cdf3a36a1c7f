#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "async/Task.h"
#include "base/HexColor.h"
#include "base/PixelBuffer.h"
#include "base/PixelRect.h"

namespace quillmar {

/// White text in a monospaced font on a dark, rounded plate. Lengths in pixels.
struct PictureCaption {
    std::string text;
    double fontSize = 14;
    double left = 0;    ///< from the canvas's left edge to the plate
    double bottom = 0;  ///< from the canvas's bottom edge to the plate
    double horizontalInset = 0;
    double verticalInset = 0;      ///< also the radius of the plate's corners
    double maximumPlateWidth = 0;  ///< the plate ends here; the text goes on
    double plateOpacity = 1;
    bool operator==(const PictureCaption&) const = default;
};

/// What a canvas shows.
struct PictureComposition {
    PixelSize canvas;
    RgbColor background;
    PixelRect destination;  ///< where the whole picture goes; each side at least 1
    /// The picture again and again to the right and upwards from `destination`, which then has its left edge
    /// at 0 and its lower edge at the canvas's.
    bool isTiled = false;
    std::optional<PictureCaption> caption;
    bool operator==(const PictureComposition&) const = default;
};

/// Asked on the main thread, at each try to draw the canvas, with the size of the picture as it is to be looked at.
using PictureComposer = std::function<PictureComposition(PixelSize)>;

/// Reads picture files, whoever they come from, where that can do no harm and can be ended: a request that is
/// cancelled, and one that takes too long, is over at once and holds up no other. Main thread. Every
/// operation throws `PictureRenderingError`, `std::system_error` with the system's reason when the work could
/// not be begun, and `CancellationError` when the task was cancelled.
class PictureRendering {
public:
    virtual ~PictureRendering() = default;
    /// A canvas with the picture of the file `source` on it: upright, in sRGB, what is transparent on the
    /// background. It is decoded no larger than its destination asks for.
    virtual Task<SharedPixels> render(std::filesystem::path source, PictureComposer composer) = 0;
    /// The pixels of a PNG file that this program has written, in exactly that size. Null for a file that is
    /// damaged, of another size or no longer there.
    virtual Task<SharedPixels> load(std::filesystem::path png, PixelSize size) = 0;
    /// Whether at least one picture of the file decodes from its first row to its last.
    virtual Task<bool> isPicture(std::filesystem::path file) = 0;
};

/// Writes pictures down. Any thread, never the main one: it waits for the disk.
class PictureEncoding {
public:
    virtual ~PictureEncoding() = default;
    /// Writes a PNG file of the picture to `target`, in one step. Throws `std::system_error` with the
    /// system's reason when it cannot be written.
    virtual void writePng(const PixelBuffer& picture, const std::filesystem::path& target) const = 0;
};

}  // namespace quillmar
