#include "platform/PictureRenderingError.h"

namespace quillmar {

PictureRenderingError PictureRenderingError::about(std::string path) const {
    // Where there is no decoder, the path is the decoder's.
    return PictureRenderingError(case_, case_ == Case::noDecoder ? path_ : std::move(path), seconds_,
                                 reason_);
}

std::string PictureRenderingError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::unreadable:
            return localized("Quillmar cannot read the selected image at %@."_key, language, {path_});
        case Case::tooLarge:
            return localized("Reading the image at %@ takes more memory than Quillmar allows."_key, language,
                             {path_});
        case Case::tookTooLong:
            return localized("Reading the image at %@ was given up after %lld seconds."_key, language,
                             {path_, seconds_});
        case Case::decoderFailed:
            return localized("The reader of the image at %@ ended unexpectedly."_key, language, {path_});
        case Case::noDecoder:
            return localized("The program %@ cannot be started: %@."_key, language, {path_, reason_});
        case Case::failed: break;
    }
    return localized("Quillmar could not render the selected image for this display."_key, language);
}

}  // namespace quillmar
