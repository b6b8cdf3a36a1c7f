#include "linux/picture/PngReader.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace quillmar {

namespace {

constexpr png_uint_32 maximumSide = 32768;
constexpr std::size_t maximumInterlacedBytes = std::size_t{1} << 30;

}  // namespace

/// libpng reports a failure by jumping back to where `setjmp` was called; so nothing with a destructor is
/// made between the two, and each call of libpng sits in a function of its own.
struct PngReader::State {
    explicit State(const std::filesystem::path& path)
        : name(path.string()), file(std::fopen(path.c_str(), "rbe")) {
        if (!file) throw std::runtime_error(name + ": " + std::generic_category().message(errno));
        png =
            png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &failed, [](png_structp, png_const_charp) {});
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~State() {
        png_destroy_read_struct(&png, &info, nullptr);
        if (file) std::fclose(file);
    }

    static void failed(png_structp png, png_const_charp message) {
        auto* state = static_cast<State*>(png_get_error_ptr(png));
        std::strncpy(state->reason, message, sizeof state->reason - 1);
        png_longjmp(png, 1);
    }
    [[noreturn]] void fail() const { throw std::runtime_error(name + ": " + reason); }

    bool readHead(PixelOrder order) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_init_io(png, file);
        png_set_user_limits(png, maximumSide, maximumSide);
        // Of the checksums only those that guard the picture itself count.
        png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_QUIET_USE);
        png_read_info(png, info);
        const png_color_16 black{};
        png_set_expand(png);
        png_set_scale_16(png);
        png_set_gray_to_rgb(png);
        png_set_background_fixed(png, &black, PNG_BACKGROUND_GAMMA_SCREEN, 0, PNG_FP_1);
        png_set_filler(png, 0xff, PNG_FILLER_AFTER);
        if (order == PixelOrder::blueGreenRedUnused) png_set_bgr(png);
        passes = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }
    bool readNext(std::uint8_t* pixels) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_read_row(png, pixels, nullptr);
        return true;
    }
    bool readWhole(std::uint8_t** rows) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_read_image(png, rows);
        return true;
    }

    std::string name;
    std::FILE* file;
    png_structp png = nullptr;
    png_infop info = nullptr;
    int passes = 1;
    char reason[160] = "not a readable picture";
    Bytes interlaced;  ///< all rows, when they come interlaced
    std::size_t nextRow = 0;
};

PngReader::PngReader(const std::filesystem::path& file, PixelOrder order)
    : state_(std::make_unique<State>(file)) {
    if (!state_->info || !state_->readHead(order)) state_->fail();
    if (png_get_rowbytes(state_->png, state_->info) != static_cast<std::size_t>(width()) * 4) state_->fail();
    if (state_->passes == 1) return;
    const std::size_t rowBytes = static_cast<std::size_t>(width()) * 4;
    const auto rowCount = static_cast<std::size_t>(height());
    if (rowBytes * rowCount > maximumInterlacedBytes) throw std::runtime_error(state_->name + ": too large");
    state_->interlaced.resize(rowBytes * rowCount);
    std::vector<std::uint8_t*> rows(rowCount);
    for (std::size_t y = 0; y < rowCount; ++y) rows[y] = state_->interlaced.data() + y * rowBytes;
    if (!state_->readWhole(rows.data())) state_->fail();
}

PngReader::~PngReader() = default;

int PngReader::width() const { return static_cast<int>(png_get_image_width(state_->png, state_->info)); }
int PngReader::height() const { return static_cast<int>(png_get_image_height(state_->png, state_->info)); }

void PngReader::readRow(std::span<std::uint8_t> pixels) {
    const std::size_t rowBytes = static_cast<std::size_t>(width()) * 4;
    if (pixels.size() != rowBytes || state_->nextRow >= static_cast<std::size_t>(height())) {
        throw std::logic_error("a row that the picture does not have");
    }
    const std::size_t row = state_->nextRow++;
    if (state_->passes > 1) {
        std::memcpy(pixels.data(), state_->interlaced.data() + row * rowBytes, rowBytes);
    } else if (!state_->readNext(pixels.data())) {
        state_->fail();
    }
}

}  // namespace quillmar
