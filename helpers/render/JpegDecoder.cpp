#include "render/JpegDecoder.h"

#include <unistd.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <jerror.h>
#include <jpeglib.h>

#include "render/JpegMetadata.h"

namespace quillmar {
namespace {

/// A picture that comes in passes is held whole as coefficients.
constexpr long maximumCoefficientBytes = 512L << 20;
/// Encoders write about ten; each pass over a large picture costs a good part of a second.
constexpr int maximumScans = 64;
/// Columns and rows that are decoded around a region: smoothing looks at the neighbours.
constexpr int margin = 2;
constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int iccMarker = JPEG_APP0 + 2;

}  // namespace

/// libjpeg reports a failure by jumping back to where `setjmp` was called; so nothing with a destructor is
/// made between the two, and each group of calls sits in a function of its own.
struct JpegDecoder::State {
    explicit State(int descriptor) : file(::fdopen(descriptor, "rb")) {
        if (!file) {
            ::close(descriptor);
            throw PictureDecodingError("The file cannot be read.");
        }
        jpeg.err = jpeg_std_error(&errors);
        jpeg.client_data = this;
        errors.error_exit = [](j_common_ptr common) { stateOf(common).fail(common); };
        errors.emit_message = [](j_common_ptr common, int level) { stateOf(common).judge(common, level); };
        errors.output_message = [](j_common_ptr) {};
        progress.progress_monitor = [](j_common_ptr common) { stateOf(common).countScans(common); };
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        jpeg_destroy_decompress(&jpeg);
        std::fclose(file);
    }

    static State& stateOf(j_common_ptr common) { return *static_cast<State*>(common->client_data); }
    [[noreturn]] void fail(j_common_ptr common) {
        errors.format_message(common, text);
        const int code = errors.msg_code;
        if (code == JERR_OUT_OF_MEMORY || code == JERR_NO_BACKING_STORE || code == JERR_BAD_PROGRESSION ||
            code == JERR_IMAGE_TOO_BIG)
            reason = PictureDecodingError::Reason::tooLarge;
        std::longjmp(jump, 1);
    }
    [[noreturn]] void throwFailure() const { throw PictureDecodingError(text, reason); }
    /// Of the warnings those count that tell of pixels which are not there.
    void judge(j_common_ptr common, int level) {
        if (level >= 0) return;
        const int code = errors.msg_code;
        if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE) fail(common);
    }
    void countScans(j_common_ptr common) {
        if (jpeg.input_scan_number <= maximumScans) return;
        errors.msg_code = JERR_BAD_PROGRESSION;
        fail(common);
    }

    bool readHead() {
        if (setjmp(jump)) return false;
        jpeg_create_decompress(&jpeg);
        jpeg.progress = &progress;
        jpeg.mem->max_memory_to_use = maximumCoefficientBytes;
        jpeg_stdio_src(&jpeg, file);
        jpeg_save_markers(&jpeg, exifMarker, 0xffff);
        jpeg_save_markers(&jpeg, iccMarker, 0xffff);
        jpeg_read_header(&jpeg, TRUE);
        return true;
    }
    bool readProfile(JOCTET** profile, unsigned* length) {
        if (setjmp(jump)) return false;
        jpeg_read_icc_profile(&jpeg, profile, length);
        return true;
    }
    bool measure() {
        if (setjmp(jump)) return false;
        jpeg_calc_output_dimensions(&jpeg);
        return true;
    }
    /// Widens `left` and `width` to what the format can begin and end with.
    bool start(JDIMENSION* left, JDIMENSION* width, JDIMENSION top) {
        if (setjmp(jump)) return false;
        jpeg.out_color_space = JCS_EXT_BGRX;
        jpeg_start_decompress(&jpeg);
        if (*width < jpeg.output_width) jpeg_crop_scanline(&jpeg, left, width);
        if (top > 0) jpeg_skip_scanlines(&jpeg, top);
        return true;
    }
    bool readRow(JSAMPROW row) {
        if (setjmp(jump)) return false;
        return jpeg_read_scanlines(&jpeg, &row, 1) == 1;
    }

    std::FILE* file;
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    std::jmp_buf jump{};
    char text[JMSG_LENGTH_MAX] = "The picture is damaged.";
    PictureDecodingError::Reason reason = PictureDecodingError::Reason::unreadable;
};

class JpegDecoder::Rows final : public RowSource {
public:
    Rows(std::unique_ptr<State> state, const GridRegion& region)
        : state_(std::move(state)), bytes_(static_cast<std::size_t>(region.width()) * pixelBytes) {
        const int gridWidth = static_cast<int>(state_->jpeg.output_width);
        const int wantedLeft = std::max(region.left - margin, 0);
        auto left = static_cast<JDIMENSION>(wantedLeft);
        auto width = static_cast<JDIMENSION>(std::min(region.right + margin, gridWidth) - wantedLeft);
        const int top = std::max(region.top - margin, 0);
        if (!state_->start(&left, &width, static_cast<JDIMENSION>(top))) state_->throwFailure();
        row_.resize(static_cast<std::size_t>(state_->jpeg.output_width) * pixelBytes);
        offset_ = static_cast<std::size_t>(region.left - static_cast<int>(left)) * pixelBytes;
        for (int y = top; y < region.top; ++y) readRow();
    }

    std::span<const std::uint8_t> nextRow() override {
        readRow();
        return std::span(row_).subspan(offset_, bytes_);
    }

private:
    void readRow() {
        if (!state_->readRow(row_.data())) state_->throwFailure();
    }

    std::unique_ptr<State> state_;
    Bytes row_;
    std::size_t offset_ = 0;
    std::size_t bytes_;
};

JpegDecoder::JpegDecoder(std::unique_ptr<State> state, std::unique_ptr<ColorProfile> profile)
    : state_(std::move(state)), profile_(std::move(profile)) {}
JpegDecoder::~JpegDecoder() = default;

std::unique_ptr<PictureDecoder> JpegDecoder::open(int descriptor) {
    const int copy = ::dup(descriptor);
    if (copy < 0 || ::lseek(copy, 0, SEEK_SET) != 0) {
        if (copy >= 0) ::close(copy);
        throw PictureDecodingError("The file cannot be read.");
    }
    auto state = std::make_unique<State>(copy);
    if (!state->readHead()) state->throwFailure();
    const jpeg_decompress_struct& jpeg = state->jpeg;
    checkPictureSize(jpeg.image_width, jpeg.image_height);
    if (jpeg.num_components > 3) throw PictureDecodingError("The picture is made of inks.");
    JOCTET* profile = nullptr;
    unsigned length = 0;
    if (!state->readProfile(&profile, &length)) state->throwFailure();
    const std::unique_ptr<JOCTET, decltype(&std::free)> owned(profile, &std::free);
    std::unique_ptr<ColorProfile> colors;
    if (profile && !isSrgbProfile({profile, length})) {
        // A profile that is none, or not for these colours, says nothing: sRGB is what they are then.
        colors = ColorProfile::read({profile, length}, jpeg.num_components == 1);
    }
    return std::unique_ptr<PictureDecoder>(new JpegDecoder(std::move(state), std::move(colors)));
}

PixelSize JpegDecoder::size() const {
    return {static_cast<int>(state_->jpeg.image_width), static_cast<int>(state_->jpeg.image_height)};
}

int JpegDecoder::orientation() const {
    for (const jpeg_marker_struct* marker = state_->jpeg.marker_list; marker; marker = marker->next) {
        if (marker->marker != exifMarker) continue;
        const int orientation = exifOrientation({marker->data, marker->data_length});
        if (orientation != 1) return orientation;
    }
    return 1;
}

PixelGrid JpegDecoder::chooseGrid(std::int64_t width, std::int64_t height) {
    jpeg_decompress_struct& jpeg = state_->jpeg;
    // Only the powers of two: the scales between them are slower than the full size.
    unsigned eighths = 1;
    while (eighths < 8 &&
           (jpeg.image_width * eighths < width * 8 || jpeg.image_height * eighths < height * 8))
        eighths *= 2;
    jpeg.scale_num = eighths;
    jpeg.scale_denom = 8;
    if (!state_->measure()) state_->throwFailure();
    return {static_cast<int>(jpeg.output_width), static_cast<int>(jpeg.output_height),
            jpeg.image_width * (eighths / 8.0), jpeg.image_height * (eighths / 8.0)};
}

std::unique_ptr<RowSource> JpegDecoder::rows(const GridRegion& region, RgbColor) {
    return std::make_unique<Rows>(std::move(state_), region);
}

std::unique_ptr<RowSource> JpegDecoder::inSrgb(std::unique_ptr<RowSource> resampled) {
    return std::make_unique<ProfiledRows>(std::move(resampled), std::move(profile_));
}

}  // namespace quillmar
