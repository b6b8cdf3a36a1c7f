#include "settings/backup/SettingsBackupService.h"

#include <fmt/format.h>

#include <system_error>

#include "base/Files.h"

namespace quillmar {
namespace {

[[noreturn]] void throwWithPlace(const std::filesystem::path& file, const std::system_error& error) {
    throw std::runtime_error(fmt::format("{}: {}", file.string(), error.code().message()));
}

void writeNow(const SettingsBackupDocument& document, const std::filesystem::path& file) {
    const std::string text = encodeBackup(document);
    try {
        createDirectories(file.parent_path());
        writeFileAtomically(file, text, 0600);
    } catch (const std::system_error& error) {
        throwWithPlace(file, error);
    }
}

SettingsBackupDocument readNow(const std::filesystem::path& file) {
    constexpr int megabytes = SettingsBackupService::maximumBytes >> 20;
    std::string text;
    try {
        text = readFile(file, SettingsBackupService::maximumBytes);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::file_too_large) {
            throw SettingsBackupError(SettingsBackupError::Case::backupTooLarge, megabytes);
        }
        throwWithPlace(file, error);
    }
    return decodeBackup(text);
}

}  // namespace

Task<void> SettingsBackupService::write(SettingsBackupDocument document, std::filesystem::path file) {
    co_await executor_.run(
        [document = std::move(document), file = std::move(file)] { writeNow(document, file); });
}

Task<SettingsBackupDocument> SettingsBackupService::read(std::filesystem::path file) {
    co_return co_await executor_.run([file = std::move(file)] { return readNow(file); });
}

}  // namespace quillmar
