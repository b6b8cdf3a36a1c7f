#pragma once
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why a screensaver of a kind that wallpapers do not have cannot be presented.
class ManagedScreensaverValidationError final : public AppLocalizableError {
public:
    enum class Case {
        missingShadertoyShaderID,
        invalidShadertoyShaderID,
        invalidTimeDisplayStyle,
        invalidAlarmTime,
        invalidTimedDuration,
        missingCustomSound
    };

    explicit ManagedScreensaverValidationError(Case errorCase) : case_(errorCase) {}

    Case errorCase() const { return case_; }
    std::string message(GeneralLanguage language) const override;

    bool operator==(const ManagedScreensaverValidationError& other) const { return case_ == other.case_; }

private:
    Case case_;
};

}  // namespace quillmar
