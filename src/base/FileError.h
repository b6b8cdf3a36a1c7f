#pragma once
#include <filesystem>
#include <system_error>

#include "base/Localization.h"

namespace quillmar {

/// A file or folder that could not be read, written or made, with the system's reason.
class FileError final : public AppLocalizableError {
public:
    FileError(std::filesystem::path file, std::error_code reason) : file_(std::move(file)), reason_(reason) {}
    FileError(std::filesystem::path file, const std::system_error& error)
        : FileError(std::move(file), error.code()) {}

    const std::error_code& reason() const { return reason_; }
    /// "/home/ana/settings.json: Permission denied".
    std::string message(GeneralLanguage language) const override;

private:
    std::filesystem::path file_;
    std::error_code reason_;
};

/// The system's reason in the language: translated where it is one that files meet, else in the system's own
/// words.
std::string systemReason(const std::error_code& reason, GeneralLanguage language);

}  // namespace quillmar
