#pragma once
#include <memory>
#include <span>

#include "render/PictureDecoder.h"

namespace quillmar {

/// The way from an embedded profile's colours to sRGB.
class ColorProfile {
public:
    /// Nothing for data that is no profile of such colours: grey, or red, green and blue.
    static std::unique_ptr<ColorProfile> read(std::span<const std::uint8_t> data, bool isGrey);
    ColorProfile(const ColorProfile&) = delete;
    ColorProfile& operator=(const ColorProfile&) = delete;
    ~ColorProfile();

    /// A pixel's fourth byte is left as `target` has it. `target` may be `pixels`.
    void convert(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> target) const;

private:
    explicit ColorProfile(void* transform) : transform_(transform) {}
    void* transform_;
};

/// Converts rows as they come.
class ProfiledRows final : public RowSource {
public:
    ProfiledRows(std::unique_ptr<RowSource> source, std::unique_ptr<ColorProfile> profile)
        : source_(std::move(source)), profile_(std::move(profile)) {}

    std::span<const std::uint8_t> nextRow() override {
        const std::span<const std::uint8_t> pixels = source_->nextRow();
        row_.resize(pixels.size());
        profile_->convert(pixels, row_);
        return row_;
    }

private:
    std::unique_ptr<RowSource> source_;
    std::unique_ptr<ColorProfile> profile_;
    Bytes row_;
};

}  // namespace quillmar
