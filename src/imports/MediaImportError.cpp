#include "imports/MediaImportError.h"

#include "base/ByteCount.h"
#include "base/FileError.h"

namespace quillmar {

MediaImportError MediaImportError::fileTooLarge(Url file, std::int64_t limitBytes) {
    return {Case::fileTooLarge, std::move(file),
            [limitBytes](GeneralLanguage language) { return byteCountText(limitBytes, language); }};
}

MediaImportError MediaImportError::importFailed(Url file, std::error_code reason) {
    return {Case::importFailed, std::move(file),
            [reason](GeneralLanguage language) { return systemReason(reason, language); }};
}

MediaImportError MediaImportError::importFailed(Url file, std::exception_ptr error) {
    return {Case::importFailed, std::move(file),
            [error = std::move(error)](GeneralLanguage language) { return errorText(error, language); }};
}

MediaImportError MediaImportError::importFailed(Url file, TextKey reason) {
    return {Case::importFailed, std::move(file),
            [reason](GeneralLanguage language) { return localized(reason, language); }};
}

std::string MediaImportError::message(GeneralLanguage language) const {
    const std::string name = std::filesystem::path(file_.displayPath()).filename().string();
    const std::string detail = detail_ ? detail_(language) : std::string();
    switch (case_) {
        case Case::unreadableFile:
            return localized("Quillmar could not read the selected file at %@."_key, language,
                             {file_.displayPath()});
        case Case::invalidImage: return localized("%@ is not a valid image file."_key, language, {name});
        case Case::invalidVideo: return localized("%@ is not a playable video file."_key, language, {name});
        case Case::invalidPDF: return localized("%@ is not a valid PDF file."_key, language, {name});
        case Case::fileTooLarge:
            return localized("%@ exceeds the import size limit of %@."_key, language, {name, detail});
        case Case::insufficientDiskSpace:
            return localized("There is not enough free disk space to import %@."_key, language, {name});
        case Case::importFailed: break;
    }
    return localized("Quillmar could not import %@: %@"_key, language, {name, detail});
}

}  // namespace quillmar
