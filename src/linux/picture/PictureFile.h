#pragma once
#include <filesystem>
#include <memory>

#include "linux/picture/PictureDecoder.h"

namespace quillmar {

class PictureModule;

/// Opens a picture file and reads its head. Waits for no one: a pipe or a device is refused. Throws
/// `PictureDecodingError`.
std::unique_ptr<PictureDecoder> openPictureFile(const std::filesystem::path& file, PictureModule& module);

}  // namespace quillmar
