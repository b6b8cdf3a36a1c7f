#pragma once
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "base/FileDescriptor.h"

namespace quillmar {

inline constexpr std::string_view downloadPrefix = "Quillmar-";
/// A new name with the prefix for a file that is on its way.
std::string downloadFileName(std::string_view prefix);
bool isDownloadFileName(std::string_view name, std::string_view prefix);

/// A private file that a download is written to: readable by this user alone and gone with the object. Used
/// on one thread at a time. The operations wait for the disk and throw `std::system_error`.
class DownloadFile {
public:
    explicit DownloadFile(const std::filesystem::path& folder);
    DownloadFile(const DownloadFile&) = delete;
    DownloadFile& operator=(const DownloadFile&) = delete;
    ~DownloadFile();

    const std::filesystem::path& path() const { return path_; }
    void append(std::span<const std::uint8_t> bytes) const;

private:
    std::filesystem::path path_;
    FileDescriptor file_;
};

}  // namespace quillmar
