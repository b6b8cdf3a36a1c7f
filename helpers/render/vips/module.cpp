#include <unistd.h>
#include <vips/vips.h>

#include <string_view>

#include "render/PictureModule.h"
#include "render/vips/VipsDecoder.h"

namespace {

void (*outOfMemory)() = nullptr;

/// GLib ends the process where it finds no memory; whoever waits for the picture is told why before.
void judge(const char*, GLogLevelFlags level, const char* message, void*) {
    const bool isFatal = (level & G_LOG_LEVEL_ERROR) != 0;
    if (isFatal && std::string_view(message).contains("failed to allocate")) outOfMemory();
}

}  // namespace

__attribute__((visibility("default"))) bool quillmarPrepare(void (*isOutOfMemory)()) {
    outOfMemory = isOutOfMemory;
    // What matters comes back as an error; the rest would be one line for every odd picture.
    g_log_set_default_handler(&judge, nullptr);
    if (vips_init("quillmar") != 0) return false;
    vips_cache_set_max(0);
    // Loaders that were never hardened stay out. SVG is among them, but people do have such wallpapers, and
    // without a base address its loader opens no other file.
    vips_block_untrusted_set(TRUE);
    vips_operation_block_set("VipsForeignLoadSvg", FALSE);
    return true;
}

__attribute__((visibility("default"))) quillmar::PictureDecoder* quillmarOpenPicture(int descriptor) {
    const int copy = ::dup(descriptor);
    if (copy < 0) throw quillmar::PictureDecodingError("The file cannot be read.");
    return new quillmar::VipsDecoder(copy);
}
