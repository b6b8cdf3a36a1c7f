#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {

std::string RemoteImageProviderError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::invalidResponse:
            if (detail_.empty()) {
                return localized("%@ returned an unexpected response."_key, language, {provider_});
            }
            return localized("%@ returned an unexpected response (%@)."_key, language, {provider_, detail_});
        case Case::httpStatus:
            return localized("%@ returned HTTP %lld."_key, language, {provider_, TextArgument(number_)});
        case Case::noUsableImage:
            return localized("%@ did not return an image matching the selected options."_key, language,
                             {provider_});
        case Case::metadataTooLarge:
            return localized("%@ returned more metadata than Quillmar can safely process."_key, language,
                             {provider_});
        case Case::imageTooLarge:
            return localized("The provider image is larger than Quillmar's %lld MB download limit."_key,
                             language, {TextArgument(number_)});
        case Case::imageDownloadFailed:
            return localized("Quillmar could not download the image from %@."_key, language, {provider_});
        case Case::unreachable: return localized("%@ did not answer: %@"_key, language, {provider_, detail_});
        case Case::forbiddenAddress:
            return localized("%@ leads to %@, which is no address of the Internet."_key, language,
                             {provider_, detail_});
        case Case::endlessRedirects:
            return localized("%@ redirects without an end."_key, language, {provider_});
        case Case::redirectToNowhere:
            return localized("%@ redirects to what is no address."_key, language, {provider_});
        case Case::timedOut: return localized("%@ did not answer in time."_key, language, {provider_});
    }
    return {};
}

}  // namespace quillmar
