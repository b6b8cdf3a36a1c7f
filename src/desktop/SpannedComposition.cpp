#include "desktop/SpannedComposition.h"

#include <fmt/format.h>

#include <algorithm>

#include "desktop/CanvasLayout.h"

namespace quillmar {
namespace {

using Layout = SpannedDesktopPicturing::Layout;

std::optional<ImagePresentationLayout> presentationLayout(Layout layout) {
    using enum ImagePresentationLayout;
    switch (layout) {
        case Layout::none: return std::nullopt;
        case Layout::tile: return tile;
        case Layout::center: return center;
        case Layout::fit: return fit;
        case Layout::stretch: return stretch;
        case Layout::fill:
        case Layout::spanned: return fill;
    }
    return std::nullopt;
}

PixelSize sizeOf(const PixelRect& area) {
    return {static_cast<int>(area.width), static_cast<int>(area.height)};
}

}  // namespace

PixelRect boundsOf(const std::vector<PixelRect>& areas) {
    if (areas.empty()) return {};
    PixelRect bounds = areas.front();
    for (const PixelRect& area : areas) {
        const std::int64_t right = std::max(bounds.right(), area.right());
        const std::int64_t bottom = std::max(bounds.bottom(), area.bottom());
        bounds.x = std::min(bounds.x, area.x);
        bounds.y = std::min(bounds.y, area.y);
        bounds.width = right - bounds.x;
        bounds.height = bottom - bounds.y;
    }
    return bounds;
}

SharedPixels composeSpanned(const std::vector<SpannedPart>& parts, RgbColor background) {
    std::vector<PixelRect> areas;
    for (const SpannedPart& part : parts) areas.push_back(part.area);
    const PixelRect bounds = boundsOf(areas);
    auto whole = std::make_shared<PixelBuffer>(sizeOf(bounds));
    whole->fill(background);
    for (const auto& [area, pixels] : parts) {
        if (!pixels) continue;
        const int rows = static_cast<int>(std::min<std::int64_t>(area.height, pixels->size().height));
        const auto columns =
            static_cast<std::size_t>(std::min<std::int64_t>(area.width, pixels->size().width));
        const auto left = static_cast<std::size_t>(area.x - bounds.x) * PixelBuffer::pixelBytes;
        for (int y = 0; y < rows; ++y) {
            std::ranges::copy(pixels->row(y).first(columns * PixelBuffer::pixelBytes),
                              whole->row(y + static_cast<int>(area.y - bounds.y)).subspan(left).begin());
        }
    }
    return whole;
}

std::optional<PictureComposer> ownPartComposer(Layout layout, const PixelRect& bounds, const PixelRect& area,
                                               RgbColor background) {
    const auto presentation = presentationLayout(layout);
    if (!presentation) return std::nullopt;
    const PixelRect whole = layout == Layout::spanned ? bounds : area;
    return [=](PixelSize source) {
        const Canvas canvas{sizeOf(whole), static_cast<double>(whole.width),
                            static_cast<double>(whole.height)};
        PictureComposition composition = compositionOf(*presentation, canvas, background, "", source);
        composition.canvas = sizeOf(area);
        composition.destination.x -= area.x - whole.x;
        composition.destination.y -= area.y - whole.y;
        return composition;
    };
}

std::string arrangementText(const std::vector<Screen>& screens) {
    std::vector<std::string> places;
    for (const Screen& screen : screens) {
        const PixelRect& area = screen.area;
        places.push_back(
            fmt::format("{} {}x{}+{}+{}", screen.connector, area.width, area.height, area.x, area.y));
    }
    std::ranges::sort(places);
    return fmt::format("{}", fmt::join(places, "; "));
}

}  // namespace quillmar
