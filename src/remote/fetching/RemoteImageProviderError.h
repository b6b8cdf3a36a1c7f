#pragma once
#include <cstdint>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why a picture service gave no picture.
class RemoteImageProviderError final : public AppLocalizableError {
public:
    enum class Case {
        invalidResponse,
        httpStatus,  ///< with the status
        noUsableImage,
        metadataTooLarge,
        imageTooLarge,  ///< with the limit in megabytes, and no provider
        imageDownloadFailed
    };

    RemoteImageProviderError(Case errorCase, std::string provider, std::int64_t number = 0)
        : case_(errorCase), provider_(std::move(provider)), number_(number) {}

    Case errorCase() const { return case_; }
    const std::string& provider() const { return provider_; }
    std::int64_t number() const { return number_; }
    std::string message(GeneralLanguage language) const override;

    bool operator==(const RemoteImageProviderError& other) const {
        return case_ == other.case_ && provider_ == other.provider_ && number_ == other.number_;
    }

private:
    Case case_;
    std::string provider_;
    std::int64_t number_;
};

}  // namespace quillmar
