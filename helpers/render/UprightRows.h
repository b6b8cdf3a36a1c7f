#pragma once
#include <memory>
#include <vector>

#include "render/PictureDecoder.h"

namespace quillmar {

/// How a picture is stored against how it is to be looked at.
struct PictureOrientation {
    bool transposes = false;    ///< stored rows are columns
    bool flipsColumns = false;  ///< stored columns run backwards
    bool flipsRows = false;     ///< stored rows run backwards

    /// From the number 1 to 8 that EXIF has.
    static PictureOrientation of(int number);
    bool isUpright() const { return !transposes && !flipsColumns && !flipsRows; }
};

/// Turns a picture upright whose stored rows are `width` by `height` pixels. Only a picture whose columns
/// alone are flipped is streamed; any other is held whole.
class UprightRows final : public RowSource {
public:
    UprightRows(std::unique_ptr<RowSource> stored, int width, int height, PictureOrientation orientation);

    std::span<const std::uint8_t> nextRow() override;

private:
    void readAll();
    void placeTransposed(std::span<const std::uint32_t> strip, int firstRow, int rowCount);

    std::unique_ptr<RowSource> stored_;
    int width_;
    int height_;
    PictureOrientation orientation_;
    std::vector<std::uint32_t> pixels_;  ///< upright, or one row when streaming
    bool isRead_ = false;
    std::size_t next_ = 0;
};

}  // namespace quillmar
