#include <unistd.h>
#include <vips/vips.h>

#include <stdexcept>

#include "linux/picture/PictureModule.h"
#include "linux/vips/VipsDecoder.h"

namespace quillmar {
namespace {

bool initialize() {
    if (vips_init("quillmar") != 0) return false;
    vips_cache_set_max(0);
    // Loaders that were never hardened stay out. SVG is among them, but people do have such wallpapers, and
    // without a base address its loader opens no other file.
    vips_block_untrusted_set(TRUE);
    vips_operation_block_set("VipsForeignLoadSvg", FALSE);
    // What matters comes back as an error; the rest would fill the journal for every odd picture.
    g_log_set_handler("VIPS", G_LOG_LEVEL_WARNING, [](auto...) {}, nullptr);
    return true;
}

}  // namespace
}  // namespace quillmar

__attribute__((visibility("default"))) quillmar::PictureDecoder* quillmarOpenPicture(int descriptor) {
    static const bool isReady = quillmar::initialize();
    if (!isReady) throw std::runtime_error("The picture decoders could not be started.");
    const int copy = ::dup(descriptor);
    if (copy < 0) throw quillmar::PictureDecodingError("The file cannot be read.");
    return new quillmar::VipsDecoder(copy);
}
