#pragma once
#include <cstdint>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why it is not known whether there is a newer version, or why its file was not taken.
class SoftwareUpdateError final : public AppLocalizableError {
public:
    enum class Case {
        feedUnreachable,  ///< `detail`: the network's own words
        feedStatus,       ///< `detail`: the HTTP status
        feedTooLarge,
        notAFeed,         ///< `detail`: what is wrong with it
        insecureAddress,  ///< `detail`: where it leads
        endlessRedirects,
        unsignedFile,     ///< from here on `detail` is the version
        fileUnreachable,  ///< `reason`: the network's own words
        fileTooLarge,
        wrongLength,
        wrongSignature,
    };
    explicit SoftwareUpdateError(Case errorCase, std::string detail = {}, std::string reason = {})
        : case_(errorCase), detail_(std::move(detail)), reason_(std::move(reason)) {}
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    std::string detail_;
    std::string reason_;
};

}  // namespace quillmar
