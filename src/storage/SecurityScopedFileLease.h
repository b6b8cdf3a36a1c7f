#pragma once
#include <optional>

#include "base/Bytes.h"
#include "base/Localization.h"
#include "base/Url.h"
#include "modes/FileReadable.h"

namespace quillmar {

/// Why a file that the user chose cannot be read any more.
class SecurityScopedFileAccessError final : public AppLocalizableError {
public:
    enum class Case { invalidBookmark, accessDenied };

    SecurityScopedFileAccessError(Case errorCase, Url url) : case_(errorCase), url_(std::move(url)) {}
    Case errorCase() const { return case_; }
    const Url& url() const { return url_; }
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    Url url_;
};

/// The use of a file or folder that the user chose, through its stored grant: hold it for as long as you
/// read. Leases on one file know nothing of each other. Any thread; making one asks the file system.
class SecurityScopedFileLease {
public:
    /// Without a grant the URL is taken as it is, there or not. Throws `SecurityScopedFileAccessError`:
    /// `invalidBookmark` with the given URL when the grant leads nowhere, `accessDenied` with the URL that it
    /// leads to when that must not be read.
    SecurityScopedFileLease(Url url, const std::optional<Bytes>& bookmark,
                            FileReadable isReadable = isReadableFile);
    SecurityScopedFileLease(SecurityScopedFileLease&&) noexcept = default;
    SecurityScopedFileLease& operator=(SecurityScopedFileLease&&) noexcept = default;

    /// Where to read: where the grant leads to, else the given URL.
    const Url& url() const { return url_; }
    /// Whether the access came through a grant. This system counts no accesses, so nothing is given back at
    /// the end of a lease.
    bool didStartAccess() const { return didStartAccess_; }

private:
    Url url_;
    bool didStartAccess_ = false;
};

}  // namespace quillmar
