#pragma once
#include <cstdint>
#include <functional>
#include <system_error>

#include "base/Localization.h"
#include "base/Url.h"

namespace quillmar {

/// Why a chosen file was not imported.
class MediaImportError final : public AppLocalizableError {
public:
    enum class Case {
        unreadableFile,
        invalidImage,
        invalidVideo,
        invalidPDF,
        fileTooLarge,
        insufficientDiskSpace,
        importFailed,
    };

    /// Of the cases that have nothing more to say than the file.
    MediaImportError(Case errorCase, Url file) : case_(errorCase), file_(std::move(file)) {}
    static MediaImportError fileTooLarge(Url file, std::int64_t limitBytes);
    static MediaImportError importFailed(Url file, std::error_code reason);
    /// For the reason that `error` says.
    static MediaImportError importFailed(Url file, std::exception_ptr error);
    static MediaImportError importFailed(Url file, TextKey reason);

    Case errorCase() const { return case_; }
    const Url& file() const { return file_; }
    std::string message(GeneralLanguage language) const override;

private:
    using Detail = std::function<std::string(GeneralLanguage)>;
    MediaImportError(Case errorCase, Url file, Detail detail)
        : case_(errorCase), file_(std::move(file)), detail_(std::move(detail)) {}

    Case case_;
    Url file_;
    Detail detail_;  ///< the limit, or the reason
};

}  // namespace quillmar
