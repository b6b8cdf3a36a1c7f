#pragma once
#include <cstdint>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why a picture service gave no picture.
class RemoteImageProviderError final : public AppLocalizableError {
public:
    enum class Case {
        invalidResponse,  ///< with what is wrong with it, where that is known
        httpStatus,       ///< with the status
        noUsableImage,
        metadataTooLarge,
        imageTooLarge,  ///< with the limit in megabytes, and no provider
        imageDownloadFailed,
        unreachable,       ///< with the network's own words
        forbiddenAddress,  ///< with the address that an answer leads to
        endlessRedirects,
        redirectToNowhere,
        timedOut,
    };

    RemoteImageProviderError(Case errorCase, std::string provider, std::int64_t number = 0)
        : case_(errorCase), provider_(std::move(provider)), number_(number) {}
    RemoteImageProviderError(Case errorCase, std::string provider, std::string detail)
        : case_(errorCase), provider_(std::move(provider)), detail_(std::move(detail)) {}

    Case errorCase() const { return case_; }
    const std::string& provider() const { return provider_; }
    std::int64_t number() const { return number_; }
    std::string message(GeneralLanguage language) const override;
    /// Whether the service said that there is no such thing, or not any more.
    bool isNotFound() const { return case_ == Case::httpStatus && (number_ == 404 || number_ == 410); }

    bool operator==(const RemoteImageProviderError& other) const {
        return case_ == other.case_ && provider_ == other.provider_ && number_ == other.number_ &&
               detail_ == other.detail_;
    }

private:
    Case case_;
    std::string provider_;
    std::int64_t number_ = 0;
    std::string detail_;
};

}  // namespace quillmar
