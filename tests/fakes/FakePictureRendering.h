#pragma once
#include <zlib.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "base/Files.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// Makes the smallest real PNG files of the wanted size that pass for pictures, and counts them.
class FakePictureRendering final : public PictureRendering {
public:
    mutable int rendered = 0;
    bool fails = false;
    std::optional<std::errc> writeError;         ///< of the next pictures' files
    PixelSize sourceSize{400, 300};            ///< of every picture that exists
    mutable PictureComposition lastComposition;  ///< of the last picture that was drawn
    mutable std::filesystem::path lastSource;    ///< of the last picture that was drawn

    void renderImage(const std::filesystem::path& source, const PictureComposer& composer,
                     const std::filesystem::path& target) const override {
        if (!std::filesystem::exists(source)) throw PictureDecodingError("no such picture");
        lastSource = source;
        lastComposition = composer(sourceSize);
        const Bytes png = solidColorPng(lastComposition.canvas.width, lastComposition.canvas.height, {});
        if (writeError) throw std::system_error(std::make_error_code(*writeError));
        writeFileAtomically(target, {reinterpret_cast<const char*>(png.data()), png.size()});
    }
    /// As a test writes pictures: whatever is there and does not say that it is none.
    bool isPicture(const std::filesystem::path& file) const override {
        std::ifstream content(file);
        const std::string text(std::istreambuf_iterator<char>(content), {});
        return !text.empty() && !text.contains("no picture");
    }
    Bytes solidColorPng(int width, int height, RgbColor) const override {
        if (fails) throw std::runtime_error("out of canvas");
        ++rendered;
        Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        Bytes header;
        append(header, static_cast<std::uint32_t>(width));
        append(header, static_cast<std::uint32_t>(height));
        header.insert(header.end(), {8, 2, 0, 0, 0});
        chunk(png, "IHDR", header);
        chunk(png, "IDAT", {0x78, 0x01, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01});
        chunk(png, "IEND", {});
        return png;
    }

    static void chunk(Bytes& png, std::string_view type, const Bytes& content) {
        append(png, static_cast<std::uint32_t>(content.size()));
        Bytes typed(type.begin(), type.end());
        typed.insert(typed.end(), content.begin(), content.end());
        png.insert(png.end(), typed.begin(), typed.end());
        append(png,
               static_cast<std::uint32_t>(::crc32(0, typed.data(), static_cast<unsigned>(typed.size()))));
    }

private:
    static void append(Bytes& bytes, std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
};

}  // namespace quillmar
