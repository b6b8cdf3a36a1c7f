#pragma once
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

#include "async/WaitList.h"
#include "base/Bytes.h"
#include "base/Files.h"
#include "platform/PictureRendering.h"
#include "platform/PictureRenderingError.h"

namespace quillmar {

/// Draws black pictures of the wanted size, keeps them as the smallest real PNG files that pass for such, and
/// counts both.
class FakePictureRendering final : public PictureRendering, public PictureEncoding {
public:
    int rendered = 0;
    int loaded = 0;
    mutable int written = 0;
    std::optional<PictureRenderingError::Case> failure;  ///< of the next pictures
    std::optional<std::errc> writeError;                 ///< of the next pictures' files
    std::set<std::filesystem::path> damaged;             ///< files whose pixels do not decode
    std::set<std::filesystem::path> noPictures;          ///< sources that are none
    PixelSize sourceSize{400, 300};                      ///< of every picture that exists
    PictureComposition lastComposition;                  ///< of the last picture that was drawn
    std::filesystem::path lastSource;                    ///< of the last picture that was drawn
    std::string stuckOn;                                 ///< a file name whose reading never ends

    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    Task<SharedPixels> render(std::filesystem::path source, PictureComposer composer) override {
        while (isHeld_ || source.filename() == stuckOn) co_await held_.wait();
        if (failure) throw PictureRenderingError(*failure, source.string());
        if (noPictures.contains(source) || !std::filesystem::exists(source)) {
            throw PictureRenderingError(PictureRenderingError::Case::unreadable, source.string());
        }
        ++rendered;
        lastSource = source;
        lastComposition = composer(sourceSize);
        co_return std::make_shared<PixelBuffer>(lastComposition.canvas);
    }
    Task<SharedPixels> load(std::filesystem::path png, PixelSize size) override {
        while (isHeld_) co_await held_.wait();
        if (damaged.contains(png) || !std::filesystem::exists(png)) co_return nullptr;
        ++loaded;
        co_return std::make_shared<PixelBuffer>(size);
    }
    /// As a test writes pictures: whatever is there and does not say that it is none.
    Task<bool> isPicture(std::filesystem::path file) override {
        while (isHeld_) co_await held_.wait();
        std::ifstream content(file);
        const std::string text(std::istreambuf_iterator<char>(content), {});
        co_return !damaged.contains(file) && !text.empty() && !text.contains("no picture");
    }
    void writePng(const PixelBuffer& picture, const std::filesystem::path& target) const override {
        if (writeError) throw std::system_error(std::make_error_code(*writeError));
        ++written;
        const Bytes png = smallestPng(picture.size());
        writeFileAtomically(target, {reinterpret_cast<const char*>(png.data()), png.size()});
    }

    static Bytes smallestPng(PixelSize size) {
        Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        Bytes header;
        append(header, static_cast<std::uint32_t>(size.width));
        append(header, static_cast<std::uint32_t>(size.height));
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
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
