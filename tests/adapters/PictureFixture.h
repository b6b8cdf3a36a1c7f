#pragma once
#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "PictureSamples.h"
#include "fakes/TemporaryFolder.h"
#include "linux/picture/LinuxPictureRendering.h"

namespace quillmar {

inline void PrintTo(const RgbColor& color, std::ostream* out) {
    *out << int(color.red) << "," << int(color.green) << "," << int(color.blue);
}

/// A colour within so much of another in every channel.
MATCHER_P2(isAbout, expected, tolerance, "") {
    const auto isNear = [&](int a, int b) { return std::abs(a - b) <= tolerance; };
    return isNear(arg.red, expected.red) && isNear(arg.green, expected.green) &&
           isNear(arg.blue, expected.blue);
}

/// Renders sample files and reads the result back.
struct PictureFixture : testing::Test {
    static constexpr RgbColor background{200, 0, 200};
    TemporaryFolder folder;
    LinuxPictureRendering rendering;
    std::filesystem::path target = folder.path() / "canvas.png";
    PixelSize seenSize;  ///< of the last picture

    std::filesystem::path save(const Bytes& bytes, const char* name = "picture") {
        const auto file = folder.path() / name;
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return file;
    }
    samples::Rgb render(const std::filesystem::path& file, const PictureComposition& composition) {
        const auto composer = [&](PixelSize size) {
            seenSize = size;
            return composition;
        };
        rendering.renderImage(file, composer, target);
        return samples::readPng(target);
    }
    samples::Rgb render(const Bytes& bytes, const PictureComposition& composition) {
        return render(save(bytes), composition);
    }
    /// The whole picture on a canvas of this size.
    samples::Rgb stretched(const Bytes& bytes, int width, int height) {
        return render(bytes, {{width, height}, background, {0, 0, width, height}, false, {}});
    }
    /// Where the quadrants' colours stand: their letters at the four corners.
    static std::string corners(const samples::Rgb& picture) {
        std::string letters;
        for (const auto& [x, y] : {std::pair{1, 1}, {3, 1}, {1, 3}, {3, 3}}) {
            const RgbColor color = picture.at(picture.width * x / 4, picture.height * y / 4);
            for (const auto& [letter, where] :
                 {std::pair{'R', std::pair{0, 0}}, {'G', {1, 0}}, {'B', {0, 1}}, {'Y', {1, 1}}}) {
                if (testing::Value(color, isAbout(samples::quadrant(where.first, where.second, 2, 2), 16)))
                    letters += letter;
            }
        }
        return letters;
    }
    static double psnr(const samples::Rgb& a, const samples::Rgb& b) {
        double squares = 0;
        for (std::size_t i = 0; i < a.bytes.size(); ++i) squares += std::pow(a.bytes[i] - b.bytes.at(i), 2);
        return 10 * std::log10(255 * 255 * static_cast<double>(a.bytes.size()) / squares);
    }
};

}  // namespace quillmar
