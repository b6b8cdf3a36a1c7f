#include "base/FileError.h"

#include <algorithm>
#include <array>

namespace quillmar {
namespace {

struct Reason {
    std::errc code;
    TextKey text;
};

constexpr auto reasons = std::to_array<Reason>({
    {std::errc::no_space_on_device, "No space left on device"_key},
    {std::errc::permission_denied, "Permission denied"_key},
    {std::errc::operation_not_permitted, "Operation not permitted"_key},
    {std::errc::no_such_file_or_directory, "No such file or directory"_key},
    {std::errc::is_a_directory, "Is a directory"_key},
    {std::errc::not_a_directory, "Not a directory"_key},
    {std::errc::read_only_file_system, "Read-only file system"_key},
    {std::errc::file_too_large, "File too large"_key},
    {std::errc::filename_too_long, "File name too long"_key},
    {std::errc::io_error, "Input/output error"_key},
    {std::errc::invalid_argument, "Invalid argument"_key},
    {std::errc::too_many_files_open, "Too many open files"_key},
});

}  // namespace

std::string FileError::message(GeneralLanguage language) const {
    return file_.string() + ": " + systemReason(reason_, language);
}

std::string systemReason(const std::error_code& reason, GeneralLanguage language) {
    const auto known = std::ranges::find_if(reasons, [&](const Reason& r) { return reason == r.code; });
    return known == reasons.end() ? reason.message() : localized(known->text, language);
}

}  // namespace quillmar
