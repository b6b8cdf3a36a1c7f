#include "updates/SoftwareUpdateError.h"

namespace quillmar {

std::string SoftwareUpdateError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::feedUnreachable:
            return localized("The list of versions could not be reached: %@"_key, language, {detail_});
        case Case::feedStatus:
            return localized("The server of the list of versions returned HTTP %@."_key, language, {detail_});
        case Case::feedTooLarge:
            return localized("The list of versions is longer than Quillmar can safely read."_key, language);
        case Case::notAFeed:
            return localized("What should be the list of versions is none: %@"_key, language, {detail_});
        case Case::insecureAddress:
            return localized("The update leads to %@, which is no secure address."_key, language, {detail_});
        case Case::endlessRedirects:
            return localized("The update server redirects without an end."_key, language);
        case Case::unsignedFile:
            return localized("Version %@ bears no signature, so it was not downloaded."_key, language,
                             {detail_});
        case Case::fileUnreachable:
            return localized("Version %@ could not be downloaded: %@"_key, language, {detail_, reason_});
        case Case::fileTooLarge:
            return localized("Version %@ is larger than Quillmar can safely download."_key, language,
                             {detail_});
        case Case::wrongLength:
            return localized(
                "The download of version %@ is not as long as was announced and was thrown away."_key,
                language, {detail_});
        case Case::wrongSignature: break;
    }
    return localized("The download of version %@ is not signed by Quillmar's makers and was thrown away."_key,
                     language, {detail_});
}

}  // namespace quillmar
