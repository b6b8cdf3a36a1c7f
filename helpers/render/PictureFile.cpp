#include "render/PictureFile.h"

#include <unistd.h>

#include <array>
#include <string_view>

#include "render/BmpDecoder.h"
#include "render/JpegDecoder.h"
#include "render/PictureModule.h"
#include "render/PngDecoder.h"

namespace quillmar {
namespace {

using namespace std::string_view_literals;

/// Whether a JPEG is made of four inks. Walks over the lengths of its segments as far as the frame's own.
bool isMadeOfInks(int descriptor) {
    constexpr int mostSegments = 2000;
    std::array<std::uint8_t, 10> head;
    std::int64_t at = 2;
    for (int segment = 0; segment < mostSegments; ++segment) {
        if (::pread(descriptor, head.data(), head.size(), at) != static_cast<ssize_t>(head.size())) break;
        if (head[0] != 0xff) break;
        if (head[1] == 0xff) {
            ++at;  // filling
            continue;
        }
        const std::uint8_t marker = head[1];
        const bool isFrame =
            marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
        if (isFrame) return head[9] > 3;
        at += 2 + (head[2] << 8 | head[3]);
    }
    return false;
}

}  // namespace

PictureFormat formatOf(int descriptor) {
    std::array<char, 16> start{};
    const ssize_t count = ::pread(descriptor, start.data(), start.size(), 0);
    const std::string_view text(start.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    if (text.starts_with("\xff\xd8\xff"sv))
        return isMadeOfInks(descriptor) ? PictureFormat::foreign : PictureFormat::jpeg;
    if (text.starts_with("\x89PNG"sv)) return PictureFormat::png;
    if (text.starts_with("BM"sv)) return PictureFormat::bitmap;
    const std::size_t first = text.find_first_not_of(" \t\r\n\xef\xbb\xbf"sv);
    const bool isMarkup = first != std::string_view::npos && text[first] == '<';
    const bool isPacked = text.starts_with("\x1f\x8b"sv);
    return isMarkup || isPacked || first == std::string_view::npos ? PictureFormat::vector
                                                                   : PictureFormat::foreign;
}

std::unique_ptr<PictureDecoder> openPicture(int descriptor, PictureFormat format,
                                            const PictureModule* module) {
    switch (format) {
        case PictureFormat::jpeg: return JpegDecoder::open(descriptor);
        case PictureFormat::png: return PngDecoder::open(descriptor);
        case PictureFormat::bitmap: return std::make_unique<BmpDecoder>(descriptor);
        case PictureFormat::vector:
        case PictureFormat::foreign: break;
    }
    if (!module) throw PictureDecodingError("This is no picture of a known format.");
    return module->open(descriptor);
}

}  // namespace quillmar
