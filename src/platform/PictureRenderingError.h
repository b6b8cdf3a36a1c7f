#pragma once
#include <cstdint>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why a picture file became no picture.
class PictureRenderingError final : public AppLocalizableError {
public:
    enum class Case {
        unreadable,     ///< no picture, a broken one, or not there
        tooLarge,       ///< more pixels than are decoded, or more memory than that may take
        tookTooLong,    ///< `seconds` were not enough
        decoderFailed,  ///< the process that reads it ended or answered nonsense
        noDecoder,      ///< the program at `path` that reads pictures cannot be started, for `reason`
        failed,         ///< the canvas could not be drawn
    };
    explicit PictureRenderingError(Case errorCase, std::string path = {}, std::int64_t seconds = 0,
                                   std::string reason = {})
        : case_(errorCase), path_(std::move(path)), seconds_(seconds), reason_(std::move(reason)) {}

    Case errorCase() const { return case_; }
    /// The same of a file with another name: of the one that a person knows.
    PictureRenderingError about(std::string path) const;
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    std::string path_;
    std::int64_t seconds_;
    std::string reason_;
};

}  // namespace quillmar
