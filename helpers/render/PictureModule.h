#pragma once
#include <memory>

#include "render/PictureDecoder.h"

/// What the module `quillmar-vips.so` exports. `quillmarPrepare` readies the library, once; false when it
/// cannot be. `quillmarOpenPicture` opens the file of a descriptor, which stays the caller's, and hands the
/// decoder over; it throws `PictureDecodingError`.
extern "C" bool quillmarPrepare(void (*isOutOfMemory)());
extern "C" quillmar::PictureDecoder* quillmarOpenPicture(int descriptor);

namespace quillmar {

/// The decoders for the formats that few pictures have. They draw in a hundred libraries, so they stand in a
/// module that is loaded only where the format needs it, and before the process locks itself in.
class PictureModule {
public:
    /// Loads and readies it. Where one of its libraries finds no memory and would end the process,
    /// `isOutOfMemory` is called before. Throws `std::runtime_error` when there is none.
    explicit PictureModule(void (*isOutOfMemory)());
    /// Throws `PictureDecodingError`.
    std::unique_ptr<PictureDecoder> open(int descriptor) const;

private:
    decltype(&quillmarOpenPicture) open_ = nullptr;
};

}  // namespace quillmar
