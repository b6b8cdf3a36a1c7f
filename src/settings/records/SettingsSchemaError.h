#pragma once
#include <cstdint>

#include "base/Localization.h"

namespace quillmar {

/// The document has a shape that this build does not know.
class SettingsSchemaError final : public AppLocalizableError {
public:
    enum class Case { incompatibleVersion };

    SettingsSchemaError(std::int64_t stored, int required) : stored_(stored), required_(required) {}

    Case errorCase() const { return Case::incompatibleVersion; }
    /// The version that the document has.
    std::int64_t stored() const { return stored_; }
    /// The version that this build reads.
    int required() const { return required_; }
    std::string message(GeneralLanguage language) const override;

private:
    std::int64_t stored_;
    int required_;
};

}  // namespace quillmar
