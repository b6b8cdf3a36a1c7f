#pragma once
#include <memory>

#include "render/PictureDecoder.h"

namespace quillmar {

class PictureModule;

/// What reads a file, as its first bytes say; the decoders may find out that it is something else.
enum class PictureFormat {
    jpeg,
    png,
    bitmap,
    vector,   ///< or any other text: the module, with fonts
    foreign,  ///< the module
};

/// Looks at the file's first bytes and, in a JPEG, for the number of its inks; nothing more, because this
/// happens before the process has locked itself in.
PictureFormat formatOf(int descriptor);
constexpr bool needsModule(PictureFormat format) { return format >= PictureFormat::vector; }

/// Reads the head of the picture in an open file, which stays the caller's. `module` may be null for a format
/// that does not need it. Throws `PictureDecodingError`.
std::unique_ptr<PictureDecoder> openPicture(int descriptor, PictureFormat format,
                                            const PictureModule* module);

}  // namespace quillmar
