#include "storage/SecurityScopedFileLease.h"

#include "storage/StoredFileGrant.h"

namespace quillmar {

std::string SecurityScopedFileAccessError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::invalidBookmark:
            return localized("Quillmar can no longer access %@. Choose the file again."_key, language,
                             {url_.displayPath()});
        case Case::accessDenied: break;
    }
    return localized("The system denied access to %@. Choose the file again."_key, language,
                     {url_.displayPath()});
}

SecurityScopedFileLease::SecurityScopedFileLease(Url url, const std::optional<Bytes>& bookmark,
                                                 FileReadable isReadable)
    : url_(std::move(url)) {
    using Case = SecurityScopedFileAccessError::Case;
    if (!bookmark) return;
    const auto file = resolveStoredFileGrant(*bookmark);
    if (!file) throw SecurityScopedFileAccessError(Case::invalidBookmark, url_);
    url_ = Url::fromFilePath(*file);
    didStartAccess_ = isReadable(*file);
    if (!didStartAccess_) throw SecurityScopedFileAccessError(Case::accessDenied, url_);
}

}  // namespace quillmar
