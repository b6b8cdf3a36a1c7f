#include "desktop/CanvasLayout.h"

#include <gmock/gmock.h>

namespace quillmar {
namespace {

using Layout = ImagePresentationLayout;

Canvas canvasOf(double width, double height, double scale = 1) {
    return Canvas::of({.id = "display:a", .frame = {0, 0, width, height}, .scaleFactor = scale});
}

std::string destination(Layout layout, const Canvas& canvas, PixelSize source) {
    const PixelRect rect = compositionOf(layout, canvas, {}, "", source).destination;
    return std::to_string(rect.x) + "," + std::to_string(rect.y) + " " + std::to_string(rect.width) + "x" +
           std::to_string(rect.height);
}

TEST(CanvasLayoutTest, aPictureIsDecodedNoLargerThanItsLayoutCanShow) {
    struct Case {
        Layout layout;
        Canvas canvas;
        PixelSize source;
        int expected;
    };
    const Case cases[] = {
        {Layout::center, canvasOf(1920, 1080), {6000, 4000}, 6000},
        {Layout::tile, canvasOf(1920, 1080), {50, 4000}, 4000},
        {Layout::stretch, canvasOf(1920, 1080), {6000, 4000}, 1920},
        {Layout::stretch, canvasOf(1080, 1920), {6000, 4000}, 2880},
        {Layout::fit, canvasOf(1920, 1080), {6000, 4000}, 1620},
        {Layout::fill, canvasOf(1920, 1080), {6000, 4000}, 1920},
        {Layout::fill, canvasOf(1920, 1080), {4000, 6000}, 2880},
        {Layout::fill, canvasOf(1920, 1080, 2), {6000, 4000}, 3840},
        {Layout::fill, canvasOf(1920, 1080, 0.5), {6000, 4000}, 1920},
        {Layout::fill, canvasOf(3840, 2160), {800, 600}, 800},
        {Layout::fit, canvasOf(100.3, 100.3), {1000, 500}, 101},
        {Layout::fit, canvasOf(0, 0), {1000, 500}, 1},
        {Layout::fit, canvasOf(1920, 1080), {1, 1}, 1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(maximumPixelSize(c.layout, c.canvas, c.source), c.expected)
            << static_cast<int>(c.layout) << " " << c.source.width << "x" << c.source.height;
    }
}

TEST(CanvasLayoutTest, theRectanglesFollowTheFormulasFromTheBottomLeft) {
    const PixelSize canvas{1920, 1080};
    const auto rect = [&](Layout layout, PixelSize decoded) { return drawingRect(layout, canvas, decoded); };
    EXPECT_EQ(rect(Layout::center, {401, 300}), (DrawingRect{759.5, 390, 401, 300}));
    EXPECT_EQ(rect(Layout::center, {3000, 2000}), (DrawingRect{-540, -460, 3000, 2000}));
    EXPECT_EQ(rect(Layout::tile, {401, 300}), (DrawingRect{0, 0, 401, 300}));
    EXPECT_EQ(rect(Layout::stretch, {401, 300}), (DrawingRect{0, 0, 1920, 1080}));
    EXPECT_EQ(rect(Layout::fit, {400, 300}), (DrawingRect{240, 0, 1440, 1080}));
    EXPECT_EQ(rect(Layout::fill, {400, 300}), (DrawingRect{0, -180, 1920, 1440}));
}

TEST(CanvasLayoutTest, destinationsAreWholePixelsFromTheTopLeft) {
    const Canvas hd = canvasOf(1920, 1080);
    EXPECT_EQ(destination(Layout::center, hd, {401, 301}), "760,389 401x301") << "keeps its own pixels";
    EXPECT_EQ(destination(Layout::center, hd, {1921, 1083}), "0,-2 1921x1083");
    EXPECT_EQ(destination(Layout::tile, hd, {401, 301}), "0,779 401x301");
    EXPECT_EQ(destination(Layout::tile, hd, {401, 3000}), "0,-1920 401x3000");
    EXPECT_EQ(destination(Layout::stretch, hd, {7, 3000}), "0,0 1920x1080");
    EXPECT_EQ(destination(Layout::fit, hd, {6000, 4000}), "150,0 1620x1080");
    EXPECT_EQ(destination(Layout::fill, hd, {6000, 4000}), "0,-100 1920x1280");
    EXPECT_EQ(destination(Layout::fill, hd, {40, 30}), "0,-180 1920x1440");
    EXPECT_EQ(destination(Layout::fit, hd, {100000, 1}), "0,539 1920x1") << "never thinner than a pixel";
    EXPECT_EQ(destination(Layout::fill, canvasOf(32768, 1080), {1, 131072}),
              "0,-2147483108 32768x4294967296");
}

TEST(CanvasLayoutTest, theCaptionGrowsWithTheCanvasFromALeastSize) {
    const auto caption = [](double width, double height, const char* text = "Río") {
        return compositionOf(Layout::fill, canvasOf(width, height), {}, text, {100, 100}).caption;
    };
    EXPECT_FALSE(caption(1920, 1080, ""));
    EXPECT_EQ(*caption(400, 300), (PictureCaption{"Río", 14, 16, 16, 12, 8, 368, 0.62}));
    const auto large = caption(3840, 2160);
    EXPECT_EQ(large->text, "Río");
    EXPECT_DOUBLE_EQ(large->fontSize, 45.36);
    EXPECT_DOUBLE_EQ(large->left, 96);
    EXPECT_DOUBLE_EQ(large->bottom, 54);
    EXPECT_DOUBLE_EQ(large->horizontalInset, 45.36 * 0.65);
    EXPECT_DOUBLE_EQ(large->verticalInset, 45.36 * 0.35);
    EXPECT_DOUBLE_EQ(large->maximumPlateWidth, 3808);
}

}  // namespace
}  // namespace quillmar
