#include "desktop/CanvasLayout.h"

#include <algorithm>
#include <cmath>

namespace quillmar {
namespace {

double sizeRatio(ImagePresentationLayout layout, double widthRatio, double heightRatio) {
    switch (layout) {
        case ImagePresentationLayout::center:
        case ImagePresentationLayout::tile: return 1;
        case ImagePresentationLayout::fit: return std::min(widthRatio, heightRatio);
        case ImagePresentationLayout::stretch:
        case ImagePresentationLayout::fill: return std::max(widthRatio, heightRatio);
    }
    return 1;
}

PixelSize decodedSize(PixelSize source, int maximumPixelSize) {
    const double ratio = static_cast<double>(maximumPixelSize) / std::max(source.width, source.height);
    const auto side = [&](int length) { return std::max(1, static_cast<int>(std::lround(length * ratio))); };
    return {side(source.width), side(source.height)};
}

DrawingRect centered(PixelSize canvas, double width, double height) {
    return {canvas.width / 2.0 - width / 2, canvas.height / 2.0 - height / 2, width, height};
}

/// Halves always upwards, so that a rectangle that is moved by a half keeps its size.
std::int64_t nearest(double edge) { return static_cast<std::int64_t>(std::floor(edge + 0.5)); }

/// To whole pixels, from the bottom left to the top left.
PixelRect onPixels(const DrawingRect& rect, PixelSize canvas) {
    PixelRect result;
    result.x = nearest(rect.x);
    result.width = std::max<std::int64_t>(nearest(rect.x + rect.width) - result.x, 1);
    result.y = canvas.height - nearest(rect.y + rect.height);
    result.height = std::max<std::int64_t>(canvas.height - nearest(rect.y) - result.y, 1);
    return result;
}

PictureCaption captionOn(PixelSize canvas, const std::string& text) {
    PictureCaption caption{.text = text};
    caption.fontSize = std::max(std::min(canvas.width, canvas.height) * 0.021, 14.0);
    caption.left = std::max(canvas.width * 0.025, 16.0);
    caption.bottom = std::max(canvas.height * 0.025, 16.0);
    caption.horizontalInset = std::max(caption.fontSize * 0.65, 12.0);
    caption.verticalInset = std::max(caption.fontSize * 0.35, 8.0);
    caption.maximumPlateWidth = canvas.width - 32.0;
    caption.plateOpacity = 0.62;
    return caption;
}

}  // namespace

Canvas Canvas::of(const DisplayInfo& display) {
    const PixelSize size = canvasSize(display);
    if (display.pixelSize) {
        return {size, static_cast<double>(size.width), static_cast<double>(size.height)};
    }
    const double scale = display.scaleFactor > 1.0 ? display.scaleFactor : 1.0;
    return {size, display.frame.width * scale, display.frame.height * scale};
}

int maximumPixelSize(ImagePresentationLayout layout, const Canvas& canvas, PixelSize source) {
    const double widthRatio = std::max(canvas.targetWidth, 1.0) / source.width;
    const double heightRatio = std::max(canvas.targetHeight, 1.0) / source.height;
    const double ratio = std::min(sizeRatio(layout, widthRatio, heightRatio), 1.0);
    const double size = std::ceil(ratio * std::max(source.width, source.height));
    return std::max(static_cast<int>(size), 1);
}

DrawingRect drawingRect(ImagePresentationLayout layout, PixelSize canvas, PixelSize decoded) {
    const double widthScale = static_cast<double>(canvas.width) / decoded.width;
    const double heightScale = static_cast<double>(canvas.height) / decoded.height;
    const auto scaled = [&](double scale) {
        return centered(canvas, decoded.width * scale, decoded.height * scale);
    };
    switch (layout) {
        case ImagePresentationLayout::center: return scaled(1);
        case ImagePresentationLayout::tile: return {0, 0, scaled(1).width, scaled(1).height};
        case ImagePresentationLayout::fit: return scaled(std::min(widthScale, heightScale));
        case ImagePresentationLayout::fill: return scaled(std::max(widthScale, heightScale));
        case ImagePresentationLayout::stretch: break;
    }
    return {0, 0, static_cast<double>(canvas.width), static_cast<double>(canvas.height)};
}

PictureComposition compositionOf(ImagePresentationLayout layout, const Canvas& canvas, RgbColor background,
                                 const std::string& caption, PixelSize source) {
    const PixelSize decoded = decodedSize(source, maximumPixelSize(layout, canvas, source));
    PictureComposition composition;
    composition.canvas = canvas.size;
    composition.background = background;
    composition.destination = onPixels(drawingRect(layout, canvas.size, decoded), canvas.size);
    composition.isTiled = layout == ImagePresentationLayout::tile;
    if (!caption.empty()) composition.caption = captionOn(canvas.size, caption);
    return composition;
}

PictureComposition scaledDown(PictureComposition composition, int longestSide) {
    const PixelSize whole = composition.canvas;
    const double ratio = static_cast<double>(longestSide) / std::max(whole.width, whole.height);
    if (ratio >= 1) return composition;
    const auto scaled = [&](std::int64_t length) { return nearest(static_cast<double>(length) * ratio); };
    const auto side = [&](std::int64_t length) { return std::max<std::int64_t>(scaled(length), 1); };
    composition.canvas = {static_cast<int>(side(whole.width)), static_cast<int>(side(whole.height))};
    PixelRect& place = composition.destination;
    place = {scaled(place.x), scaled(place.y), side(place.width), side(place.height)};
    // Tiles begin at the lower edge, wherever that was rounded to.
    if (composition.isTiled) place.y = composition.canvas.height - place.height;
    composition.caption.reset();  // nobody could read it
    return composition;
}

}  // namespace quillmar
