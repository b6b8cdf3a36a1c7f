#include "render/PngDecoder.h"

#include <png.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "render/JpegMetadata.h"

namespace quillmar {
namespace {

/// Lays a row of colours with opacities on a background.
void flatten(std::span<std::uint8_t> pixels, RgbColor color) {
    const std::uint32_t behind[] = {color.blue, color.green, color.red};
    for (std::size_t at = 0; at < pixels.size(); at += pixelBytes) {
        std::uint8_t* pixel = &pixels[at];
        const std::uint32_t opacity = pixel[3];
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const std::uint32_t sum = pixel[channel] * opacity + behind[channel] * (255 - opacity);
            pixel[channel] = static_cast<std::uint8_t>((sum + 127) / 255);
        }
        pixel[3] = 0xff;
    }
}

}  // namespace

/// libpng reports a failure by jumping back to where `setjmp` was called; so nothing with a destructor is
/// made between the two, and each group of calls sits in a function of its own.
struct PngDecoder::State {
    explicit State(int descriptor) : file(::fdopen(descriptor, "rb")) {
        if (!file) {
            ::close(descriptor);
            throw PictureDecodingError("The file cannot be read.");
        }
        png =
            png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &failed, [](png_structp, png_const_charp) {});
        info = png ? png_create_info_struct(png) : nullptr;
        if (!info) {
            std::fclose(file);
            throw std::bad_alloc();
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        png_destroy_read_struct(&png, &info, nullptr);
        std::fclose(file);
    }

    static void failed(png_structp png, png_const_charp message) {
        auto* state = static_cast<State*>(png_get_error_ptr(png));
        std::strncpy(state->text, message, sizeof state->text - 1);
        png_longjmp(png, 1);
    }
    [[noreturn]] void throwFailure() const { throw PictureDecodingError(text); }

    bool readHead() {
        if (setjmp(png_jmpbuf(png))) return false;
        png_init_io(png, file);
        png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // judged below, as what they are
        // Of the checksums only those that guard the picture itself count.
        png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_QUIET_USE);
        png_read_info(png, info);
        return true;
    }
    bool start() {
        if (setjmp(png_jmpbuf(png))) return false;
        png_set_expand(png);
        png_set_scale_16(png);
        png_set_gray_to_rgb(png);
        png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
        png_set_bgr(png);
        passes = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }
    bool readRow(std::uint8_t* row) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_read_row(png, row, nullptr);
        return true;
    }
    bool readWhole(std::uint8_t** rows) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_read_image(png, rows);
        return true;
    }
    bool isGrey() const { return (png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR) == 0; }
    bool isTransparent() const {
        return (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 ||
               png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    }
    int width() const { return static_cast<int>(png_get_image_width(png, info)); }
    int height() const { return static_cast<int>(png_get_image_height(png, info)); }
    std::size_t rowBytes() const { return static_cast<std::size_t>(width()) * pixelBytes; }

    std::FILE* file;
    png_structp png = nullptr;
    png_infop info = nullptr;
    int passes = 1;
    char text[100] = "The picture is damaged.";
};

class PngDecoder::Rows final : public RowSource {
public:
    Rows(std::unique_ptr<State> state, const GridRegion& region, RgbColor background,
         std::unique_ptr<ColorProfile> profile)
        : state_(std::move(state)),
          offset_(static_cast<std::size_t>(region.left) * pixelBytes),
          bytes_(static_cast<std::size_t>(region.width()) * pixelBytes),
          background_(background),
          isTransparent_(state_->isTransparent()),
          profile_(std::move(profile)) {
        if (!state_->start()) state_->throwFailure();
        if (state_->passes > 1) {
            readWhole();
            next_ = static_cast<std::size_t>(region.top);
        } else {
            pixels_.resize(state_->rowBytes());
            for (int y = 0; y < region.top; ++y) readRow();
        }
    }

    std::span<const std::uint8_t> nextRow() override {
        std::span<std::uint8_t> row(pixels_);
        if (state_->passes > 1) {
            row = row.subspan(next_++ * state_->rowBytes(), state_->rowBytes());
        } else {
            readRow();
        }
        row = row.subspan(offset_, bytes_);
        if (profile_) profile_->convert(row, row);
        if (isTransparent_) flatten(row, background_);
        return row;
    }

private:
    void readRow() {
        if (!state_->readRow(pixels_.data())) state_->throwFailure();
    }
    void readWhole() {
        const auto height = static_cast<std::size_t>(state_->height());
        pixels_.resize(state_->rowBytes() * height);
        std::vector<std::uint8_t*> rows(height);
        for (std::size_t y = 0; y < height; ++y) rows[y] = pixels_.data() + y * state_->rowBytes();
        if (!state_->readWhole(rows.data())) state_->throwFailure();
    }

    std::unique_ptr<State> state_;
    std::size_t offset_;
    std::size_t bytes_;
    RgbColor background_;
    bool isTransparent_;
    std::unique_ptr<ColorProfile> profile_;  ///< of a transparent picture: it goes before the background
    Bytes pixels_;                           ///< one row, or all of them
    std::size_t next_ = 0;                   ///< of all of them
};

PngDecoder::PngDecoder(std::unique_ptr<State> state, std::unique_ptr<ColorProfile> profile)
    : state_(std::move(state)), profile_(std::move(profile)) {}
PngDecoder::~PngDecoder() = default;

std::unique_ptr<PictureDecoder> PngDecoder::open(int descriptor) {
    const int copy = ::dup(descriptor);
    if (copy < 0 || ::lseek(copy, 0, SEEK_SET) != 0) {
        if (copy >= 0) ::close(copy);
        throw PictureDecodingError("The file cannot be read.");
    }
    auto state = std::make_unique<State>(copy);
    if (!state->readHead()) state->throwFailure();
    checkPictureSize(png_get_image_width(state->png, state->info),
                     png_get_image_height(state->png, state->info));
    std::unique_ptr<ColorProfile> colors;
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 length = 0;
    // A profile that is none, or not for these colours, says nothing: sRGB is what they are then.
    if (png_get_iCCP(state->png, state->info, &name, &compression, &profile, &length) != 0 &&
        !isSrgbProfile({profile, length}))
        colors = ColorProfile::read({profile, length}, state->isGrey());
    return std::unique_ptr<PictureDecoder>(new PngDecoder(std::move(state), std::move(colors)));
}

PixelSize PngDecoder::size() const { return {state_->width(), state_->height()}; }

PixelGrid PngDecoder::chooseGrid(std::int64_t, std::int64_t) {
    const auto [width, height] = size();
    return {width, height, static_cast<double>(width), static_cast<double>(height)};
}

std::unique_ptr<RowSource> PngDecoder::rows(const GridRegion& region, RgbColor background) {
    auto profile = state_->isTransparent() ? std::move(profile_) : nullptr;
    return std::make_unique<Rows>(std::move(state_), region, background, std::move(profile));
}

std::unique_ptr<RowSource> PngDecoder::inSrgb(std::unique_ptr<RowSource> resampled) {
    return std::make_unique<ProfiledRows>(std::move(resampled), std::move(profile_));
}

}  // namespace quillmar
