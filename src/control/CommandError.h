#pragma once
#include <string>
#include <vector>

#include "base/Localization.h"

namespace quillmar {

/// Why a command that was understood could not be carried out.
class CommandError final : public AppLocalizableError {
public:
    /// `values` fill in the sentence; two at most.
    explicit CommandError(TextKey sentence, std::vector<std::string> values = {})
        : sentence_(sentence), values_(std::move(values)) {}
    std::string message(GeneralLanguage language) const override {
        const auto value = [&](std::size_t at) { return at < values_.size() ? values_[at] : std::string(); };
        return localized(sentence_, language, {value(0), value(1)});
    }

private:
    TextKey sentence_;
    std::vector<std::string> values_;
};

}  // namespace quillmar
