#include "linux/desktop/DesktopFile.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace quillmar {

void requireReadable(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        throw std::system_error(error ? error : std::make_error_code(std::errc::invalid_argument),
                                file.string());
    }
    errno = 0;
    if (!std::ifstream(file)) throw std::system_error(errno, std::generic_category(), file.string());
}

std::optional<std::filesystem::path> existingFile(const std::filesystem::path& file) {
    std::error_code ignored;
    if (!file.is_absolute() || !std::filesystem::is_regular_file(file, ignored)) return std::nullopt;
    return file;
}

}  // namespace quillmar
