#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "base/Bytes.h"
#include "base/HexColor.h"

namespace quillmar {

/// A file that is no picture, a broken one, or one that is too large to be decoded.
class PictureDecodingError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Size in pixels, each side at least 1.
struct PictureSize {
    int width = 1;
    int height = 1;
    bool operator==(const PictureSize&) const = default;
};

/// A rectangle of whole pixels on a canvas: origin at the canvas's top left, y downwards. It may reach beyond
/// the canvas on every side.
struct PictureRect {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool operator==(const PictureRect&) const = default;
};

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
    PictureSize canvas;
    RgbColor background;
    PictureRect destination;  ///< where the whole picture goes; each side at least 1
    /// The picture again and again to the right and upwards from `destination`, which then has its left edge
    /// at 0 and its lower edge at the canvas's.
    bool isTiled = false;
    std::optional<PictureCaption> caption;
    bool operator==(const PictureComposition&) const = default;
};

/// Asked once, on the calling thread, with the size of the picture as it is to be looked at.
using PictureComposer = std::function<PictureComposition(PictureSize)>;

/// Draws pictures. Any thread.
class PictureRendering {
public:
    virtual ~PictureRendering() = default;
    /// A PNG file of one colour, `width` by `height` pixels. Throws `std::runtime_error` for a side below 1
    /// or above 32768 and for a picture that cannot be drawn.
    virtual Bytes solidColorPng(int width, int height, RgbColor color) const = 0;
    /// Writes a PNG file of a canvas to `target`, in one step, with the picture of the file `source` on it:
    /// upright, in sRGB, what is transparent on the background. It is decoded no larger than its destination
    /// asks for. Throws `PictureDecodingError` when the source cannot be read, `std::system_error` with the
    /// system's reason when the target cannot be written, and another exception when the canvas cannot be
    /// drawn.
    virtual void renderImage(const std::filesystem::path& source, const PictureComposer& composer,
                             const std::filesystem::path& target) const = 0;
    /// Whether at least one picture of the file decodes from its first row to its last. Throws
    /// `std::runtime_error` when that cannot be told.
    virtual bool isPicture(const std::filesystem::path& file) const = 0;
};

}  // namespace quillmar
