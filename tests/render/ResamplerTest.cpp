#include "render/Resampler.h"

#include <numbers>

#include "PictureFixture.h"

namespace quillmar {
namespace {

using samples::Rgb;

/// The slow way, in doubles: every pixel out of all of the source.
Rgb reference(const Rgb& source, int width, int height) {
    const auto lanczos = [](double x) {
        if (std::abs(x) < 1e-12) return 1.0;
        if (std::abs(x) >= 3) return 0.0;
        const double a = std::numbers::pi * x;
        return 3 * std::sin(a) * std::sin(a / 3) / (a * a);
    };
    const auto weights = [&](int size, int length) {
        std::vector<std::vector<double>> all;
        for (int i = 0; i < length; ++i) {
            const double step = static_cast<double>(size) / length;
            const double stretch = std::max(step, 1.0);
            double sum = 0;
            auto& own = all.emplace_back();
            for (int s = 0; s < size; ++s)
                sum += own.emplace_back(lanczos(((s + 0.5) - (i + 0.5) * step) / stretch));
            for (double& weight : own) weight /= sum;
        }
        return all;
    };
    const auto across = weights(source.width, width);
    const auto down = weights(source.height, height);
    return {width, height, [&](int x, int y) {
                double sums[3] = {};
                for (int sy = 0; sy < source.height; ++sy) {
                    const double outer = down[static_cast<std::size_t>(y)][static_cast<std::size_t>(sy)];
                    if (outer == 0) continue;
                    for (int sx = 0; sx < source.width; ++sx) {
                        const double weight =
                            outer * across[static_cast<std::size_t>(x)][static_cast<std::size_t>(sx)];
                        const std::uint8_t* pixel =
                            &source.bytes[static_cast<std::size_t>(sy * source.width + sx) * 3];
                        for (int c = 0; c < 3; ++c) sums[c] += weight * pixel[c];
                    }
                }
                const auto byte = [](double v) {
                    return static_cast<std::uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
                };
                return RgbColor{byte(sums[0]), byte(sums[1]), byte(sums[2])};
            }};
}

using ResamplerTest = PictureFixture;

TEST_F(ResamplerTest, resultsAreThoseOfTheExactFilterInEverySize) {
    const Rgb picture = samples::patterned(120, 90);
    const Bytes file = samples::png(picture);
    const PixelSize sizes[] = {{120, 90}, {77, 58}, {200, 31}, {60, 45}, {13, 150}, {5, 3}, {1, 1}, {7, 1}};
    for (const auto& [width, height] : sizes) {
        EXPECT_GT(psnr(stretched(file, width, height), reference(picture, width, height)), 60)
            << width << "x" << height;
    }
}

TEST_F(ResamplerTest, aJpegThatIsDecodedSmallerStaysCloseToTheExactFilter) {
    const Rgb picture(121, 83, [](int x, int y) {
        const auto wave = [](double phase) {
            return static_cast<std::uint8_t>(std::lround(127.5 + 100 * std::sin(phase)));
        };
        return RgbColor{wave(x * 0.07), wave(y * 0.09), wave((x + y) * 0.05)};
    });
    const Bytes file = samples::jpeg(picture, {.quality = 100});
    for (const auto& [width, height] : {std::pair{121, 83}, {85, 60}, {50, 35}, {25, 20}, {20, 14}})
        EXPECT_GT(psnr(stretched(file, width, height), reference(picture, width, height)), 45) << width;
}

/// Rows of one grey each, very many.
class TallSource final : public RowSource {
public:
    std::span<const std::uint8_t> nextRow() override {
        row_.assign(pixelBytes, static_cast<std::uint8_t>(next_++ < 15'000 ? 40 : 200));
        return row_;
    }

private:
    Bytes row_;
    int next_ = 0;
};

TEST_F(ResamplerTest, theTallestPictureShrinksToAFewRows) {
    Resampler resampler(std::make_unique<TallSource>(), LanczosAxis(1, 1, 30, 0, 30),
                        LanczosAxis(30'000, 30'000, 4, 0, 4));
    std::vector<int> greys;
    for (int i = 0; i < 4; ++i) greys.push_back(resampler.nextRow()[116]);
    EXPECT_THAT(greys,
                testing::ElementsAre(testing::Le(45), testing::Le(50), testing::Ge(190), testing::Ge(195)));
}

}  // namespace
}  // namespace quillmar
