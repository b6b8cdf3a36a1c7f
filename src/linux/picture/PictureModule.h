#pragma once
#include <memory>
#include <mutex>

#include "linux/picture/PictureDecoder.h"

/// What the module `quillmar-vips.so` exports: opens the file of a descriptor, which stays the caller's, and
/// hands the decoder over. Throws `PictureDecodingError`.
extern "C" quillmar::PictureDecoder* quillmarOpenPicture(int descriptor);

namespace quillmar {

/// The decoders for all that is no plain JPEG. They draw in a hundred libraries, so they stand in a module
/// that is loaded when the first such picture comes and then stays. Any thread.
class PictureModule {
public:
    /// Throws `PictureDecodingError` for the picture, another `std::runtime_error` when there is no module.
    std::unique_ptr<PictureDecoder> open(int descriptor);

private:
    std::mutex mutex_;
    decltype(&quillmarOpenPicture) function_ = nullptr;
};

}  // namespace quillmar
