#pragma once
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// Why the program could not be put among those that the session starts.
class LoginItemError final : public AppLocalizableError {
public:
    enum class Case {
        foreignEntry,  ///< the file at `path` starts something else
        noFolder,      ///< the session has no folder for such entries
        noProgram,     ///< the program at `path` is not there
    };
    explicit LoginItemError(Case errorCase, std::string path = {})
        : case_(errorCase), path_(std::move(path)) {}
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    std::string path_;
};

}  // namespace quillmar
