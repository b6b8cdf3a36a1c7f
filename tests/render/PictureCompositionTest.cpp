#include <optional>

#include "PictureFixture.h"
#include "base/Rect.h"

namespace quillmar {
namespace {

using samples::Rgb;
using testing::ElementsAre;

constexpr RgbColor paper = PictureFixture::background;

/// Cells of one pixel, each with a colour of its own.
Rgb numbered(int width, int height) {
    return {width, height, [](int x, int y) {
                return RgbColor{static_cast<std::uint8_t>(10 * x), static_cast<std::uint8_t>(10 * y), 77};
            }};
}

struct PictureCompositionTest : PictureFixture {
    PictureComposition on(PixelSize canvas, PixelRect destination, bool isTiled = false) {
        return {canvas, background, destination, isTiled, {}};
    }
    /// Of every pixel the one of the picture it shows, or the background.
    void expectShows(const Rgb& canvas, const Rgb& picture,
                     const std::function<std::optional<Point>(int x, int y)>& sourceOf) {
        for (int y = 0; y < canvas.height; ++y) {
            for (int x = 0; x < canvas.width; ++x) {
                const auto source = sourceOf(x, y);
                const RgbColor expected =
                    source ? picture.at(static_cast<int>(source->x), static_cast<int>(source->y)) : paper;
                ASSERT_EQ(canvas.at(x, y), expected) << "at " << x << "," << y;
            }
        }
    }
};

TEST_F(PictureCompositionTest, aPictureOfItsOwnSizeKeepsEveryPixelWhereverItLies) {
    const Rgb picture = numbered(9, 7);
    const Bytes file = samples::png(picture);
    struct Place {
        PixelSize canvas;
        std::int64_t x;
        std::int64_t y;
    };
    const Place places[] = {{{20, 10}, 5, 2},  {{9, 7}, 0, 0},    {{4, 3}, -2, -3}, {{30, 3}, 7, -2},
                            {{4, 20}, -5, 13}, {{20, 10}, 12, 8}, {{8, 8}, 9, 0},   {{8, 8}, 0, -40}};
    for (const auto& [canvas, x, y] : places) {
        SCOPED_TRACE(testing::Message() << x << "," << y);
        expectShows(render(file, on(canvas, {x, y, 9, 7})), picture,
                    [&, left = x, top = y](int cx, int cy) -> std::optional<Point> {
                        const auto px = cx - left;
                        const auto py = cy - top;
                        if (px < 0 || py < 0 || px >= 9 || py >= 7) return std::nullopt;
                        return Point{static_cast<double>(px), static_cast<double>(py)};
                    });
    }
}

TEST_F(PictureCompositionTest, tilesStartInTheBottomLeftCornerAndAreCutAtTopAndRight) {
    const Rgb picture = numbered(5, 4);
    const Bytes file = samples::png(picture);
    for (const PixelSize canvas : {PixelSize{13, 10}, {3, 10}, {13, 4}, {4, 3}, {12, 2}}) {
        SCOPED_TRACE(testing::Message() << canvas.width << "x" << canvas.height);
        expectShows(render(file, on(canvas, {0, canvas.height - 4, 5, 4}, true)), picture, [&](int x, int y) {
            const int fromBottom = (canvas.height - 1 - y) % 4;
            return Point{static_cast<double>(x % 5), static_cast<double>(3 - fromBottom)};
        });
    }
}

TEST_F(PictureCompositionTest, theSmallestPicturesFillAnyCanvas) {
    const Bytes dot = samples::png(Rgb(1, 1, [](int, int) { return RgbColor{1, 2, 3}; }));
    for (const bool isTiled : {false, true}) {
        const PixelRect all = isTiled ? PixelRect{0, 199, 1, 1} : PixelRect{-500, 0, 1300, 200};
        const Rgb canvas = render(dot, on({300, 200}, all, isTiled));
        EXPECT_EQ(canvas.at(0, 0), (RgbColor{1, 2, 3}));
        EXPECT_EQ(canvas.at(299, 199), (RgbColor{1, 2, 3}));
    }
    EXPECT_EQ(stretched(samples::jpeg(Rgb(1, 1, [](int, int) { return RgbColor{9, 9, 9}; })), 1, 1).at(0, 0),
              (RgbColor{9, 9, 9}));
}

TEST_F(PictureCompositionTest, whatFallsOffTheCanvasDoesNotChangeWhatIsOnIt) {
    const Rgb picture = samples::patterned(301, 203);
    for (const bool hasHalfColors : {false, true}) {
        for (const int orientation : {1, 3, 6}) {
            const Bytes file = samples::jpeg(
                picture, {.quality = 90, .orientation = orientation, .hasHalfColors = hasHalfColors});
            for (const double scale : {1.7, 0.8, 0.45, 0.11}) {
                const bool isTurned = orientation > 4;
                const auto width = std::lround((isTurned ? 203 : 301) * scale);
                const auto height = std::lround((isTurned ? 301 : 203) * scale);
                const Rgb whole = stretched(file, static_cast<int>(width), static_cast<int>(height));
                const PixelSize canvas{static_cast<int>(width / 2), static_cast<int>(height / 3)};
                const PixelRect moved{-width / 4, -height / 2, width, height};
                const Rgb part = render(file, on(canvas, moved));
                for (int y = 0; y < canvas.height; ++y) {
                    for (int x = 0; x < canvas.width; ++x) {
                        ASSERT_EQ(part.at(x, y),
                                  whole.at(x - static_cast<int>(moved.x), y - static_cast<int>(moved.y)))
                            << x << "," << y << " scale " << scale << " orientation " << orientation;
                    }
                }
            }
        }
    }
}

TEST_F(PictureCompositionTest, aCanvasThatCannotBeDrawnIsRefused) {
    const auto file = save(samples::png(numbered(9, 7)));
    EXPECT_EQ(failureOf(rendered(file, on({9, 7}, {0, 0, 0, 7}))), PictureRenderingError::Case::failed);
    EXPECT_THROW(awaited(rendered(file, on({40000, 7}, {0, 0, 9, 7}))), std::invalid_argument);
}

struct CaptionTest : PictureCompositionTest {
    PictureCaption caption{.text = "A caption",
                           .fontSize = 14,
                           .left = 16,
                           .bottom = 20,
                           .horizontalInset = 12,
                           .verticalInset = 8,
                           .maximumPlateWidth = 368,
                           .plateOpacity = 0.62};
    static constexpr PixelSize canvas{400, 200};

    Rgb drawn() {
        PictureComposition composition = on(canvas, {0, 0, 1, 1});
        composition.caption = caption;
        return render(samples::png(numbered(1, 1)), composition);
    }
    /// The rectangle around the pixels of which `isMeant` holds: left, top, right, bottom (outside).
    static std::vector<int> bounds(const Rgb& picture, const std::function<bool(RgbColor)>& isMeant) {
        std::vector<int> box{picture.width, picture.height, 0, 0};
        for (int y = 1; y < picture.height; ++y) {
            for (int x = 1; x < picture.width; ++x) {
                if (!isMeant(picture.at(x, y))) continue;
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1),
                       std::max(box[3], y + 1)};
            }
        }
        return box;
    }
    static bool isText(RgbColor color) { return color.green > 60; }
    static bool isTouched(RgbColor color) { return color != background; }
};

TEST_F(CaptionTest, theTextStandsOnARoundedPlateInTheBottomLeftCorner) {
    const Rgb picture = drawn();
    const auto plate = bounds(picture, isTouched);
    const auto text = bounds(picture, isText);
    EXPECT_EQ(plate[0], 16);
    EXPECT_EQ(plate[3], canvas.height - 20);
    EXPECT_NEAR(text[0], 16 + 12, 3);
    EXPECT_GE(text[1], plate[1] + 8);
    EXPECT_LE(text[2], plate[2] - 12 + 1);
    EXPECT_LE(text[3], plate[3] - 8);
    EXPECT_GT(text[2] - text[0], 9 * 6);
    const RgbColor dark{static_cast<std::uint8_t>(200 * 0.38), 0, static_cast<std::uint8_t>(200 * 0.38)};
    EXPECT_THAT(picture.at(plate[0] + 10, plate[1] + 3), isAbout(dark, 1));
    EXPECT_EQ(picture.at(plate[0], plate[1]), paper) << "the corner is round";
}

TEST_F(CaptionTest, aTextWiderThanThePlateIsNotCut) {
    caption.text = std::string(30, 'W');
    caption.maximumPlateWidth = 100;
    const Rgb picture = drawn();
    const auto text = bounds(picture, isText);
    EXPECT_GT(text[2], 200);
    const auto plate = bounds(picture, [](RgbColor color) { return color.green < 20 && color.red < 100; });
    EXPECT_EQ(plate[2], 16 + 100);
}

TEST_F(CaptionTest, aCaptionLargerThanItsCanvasIsCutAtTheCanvas) {
    caption.text = "Two lines\n\xff" + std::string(500, 'W');  // one byte of it is no UTF-8
    caption.bottom = 150;
    caption.fontSize = 60;
    EXPECT_EQ(bounds(drawn(), isTouched)[2], canvas.width);
    caption.left = 4000;
    EXPECT_EQ(bounds(drawn(), isTouched)[2], 0) << "nothing of it is to be seen";
}

}  // namespace
}  // namespace quillmar
