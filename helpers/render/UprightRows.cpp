#include "render/UprightRows.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace quillmar {
namespace {

/// So many pixels of four bytes fill a line of the processor's cache: written together, a line is fetched
/// once.
constexpr int stripRows = 16;

}  // namespace

PictureOrientation PictureOrientation::of(int number) {
    switch (number) {
        case 2: return {.flipsColumns = true};
        case 3: return {.flipsColumns = true, .flipsRows = true};
        case 4: return {.flipsRows = true};
        case 5: return {.transposes = true};
        case 6: return {.transposes = true, .flipsRows = true};
        case 7: return {.transposes = true, .flipsColumns = true, .flipsRows = true};
        case 8: return {.transposes = true, .flipsColumns = true};
        default: return {};
    }
}

UprightRows::UprightRows(std::unique_ptr<RowSource> stored, int width, int height,
                         PictureOrientation orientation)
    : stored_(std::move(stored)), width_(width), height_(height), orientation_(orientation) {}

std::span<const std::uint8_t> UprightRows::nextRow() {
    const bool isStreamed = !orientation_.transposes && !orientation_.flipsRows;
    const auto width = static_cast<std::size_t>(orientation_.transposes ? height_ : width_);
    if (isStreamed) {
        pixels_.resize(width);
        std::memcpy(pixels_.data(), stored_->nextRow().data(), width * pixelBytes);
        if (orientation_.flipsColumns) std::ranges::reverse(pixels_);
    } else if (!isRead_) {
        readAll();
    }
    const std::uint32_t* row = pixels_.data() + (isStreamed ? 0 : next_++ * width);
    return {reinterpret_cast<const std::uint8_t*>(row), width * pixelBytes};
}

void UprightRows::readAll() {
    const auto width = static_cast<std::size_t>(width_);
    pixels_.resize(width * static_cast<std::size_t>(height_));
    std::vector<std::uint32_t> strip(width * (orientation_.transposes ? stripRows : 1));
    for (int y = 0; y < height_;) {
        const int count = orientation_.transposes ? std::min(stripRows, height_ - y) : 1;
        for (int i = 0; i < count; ++i) {
            std::uint32_t* row = &strip[static_cast<std::size_t>(i) * width];
            std::memcpy(row, stored_->nextRow().data(), width * pixelBytes);
            if (orientation_.flipsColumns) std::reverse(row, row + width);
        }
        if (orientation_.transposes) {
            placeTransposed(strip, y, count);
        } else {
            const int target = orientation_.flipsRows ? height_ - 1 - y : y;
            std::ranges::copy(strip, &pixels_[static_cast<std::size_t>(target) * width]);
        }
        y += count;
    }
    stored_.reset();
    isRead_ = true;
}

void UprightRows::placeTransposed(std::span<const std::uint32_t> strip, int firstRow, int rowCount) {
    const auto width = static_cast<std::size_t>(width_);
    const auto height = static_cast<std::size_t>(height_);
    for (std::size_t x = 0; x < width; ++x) {
        for (int i = 0; i < rowCount; ++i) {
            const int column = orientation_.flipsRows ? height_ - 1 - (firstRow + i) : firstRow + i;
            pixels_[x * height + static_cast<std::size_t>(column)] =
                strip[static_cast<std::size_t>(i) * width + x];
        }
    }
}

}  // namespace quillmar
