#include "render/ColorProfile.h"

#include <lcms2.h>

namespace quillmar {
namespace {

struct ProfileClose {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using OwnedProfile = std::unique_ptr<void, ProfileClose>;

}  // namespace

std::unique_ptr<ColorProfile> ColorProfile::read(std::span<const std::uint8_t> data, bool isGrey) {
    const OwnedProfile own(cmsOpenProfileFromMem(data.data(), static_cast<cmsUInt32Number>(data.size())));
    if (!own || cmsGetColorSpace(own.get()) != (isGrey ? cmsSigGrayData : cmsSigRgbData)) return nullptr;
    const OwnedProfile srgb(cmsCreate_sRGBProfile());
    // Four bytes a pixel: grey is the first of three equal ones, and the last is left alone.
    constexpr cmsUInt32Number grey = COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | BYTES_SH(1);
    void* transform = cmsCreateTransform(own.get(), isGrey ? grey : TYPE_BGRA_8, srgb.get(), TYPE_BGRA_8,
                                         INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOCACHE);
    return transform ? std::unique_ptr<ColorProfile>(new ColorProfile(transform)) : nullptr;
}

ColorProfile::~ColorProfile() { cmsDeleteTransform(transform_); }

void ColorProfile::convert(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> target) const {
    cmsDoTransform(transform_, pixels.data(), target.data(),
                   static_cast<cmsUInt32Number>(pixels.size() / pixelBytes));
}

}  // namespace quillmar
