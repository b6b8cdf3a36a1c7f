#include "settings/backup/SettingsBackupService.h"

#include "base/FileError.h"
#include "base/Files.h"

namespace quillmar {
namespace {

void writeNow(const SettingsBackupDocument& document, const std::filesystem::path& file) {
    const std::string text = encodeBackup(document);
    try {
        createDirectories(file.parent_path());
        writeFileAtomically(file, text, 0600);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
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
        throw FileError(file, error);
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
