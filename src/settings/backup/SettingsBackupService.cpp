#include "settings/backup/SettingsBackupService.h"

#include "base/FileError.h"
#include "base/Files.h"

namespace quillmar {
namespace {

constexpr int megabytes = SettingsBackupService::maximumBytes >> 20;

std::string textNow(const SettingsBackupDocument& document) {
    std::string text = encodeBackup(document);
    if (text.size() > SettingsBackupService::maximumBytes)
        throw SettingsBackupError(SettingsBackupError::Case::backupTooLarge, megabytes);
    decodeBackup(text);  // what no restore would take is no backup
    return text;
}

void writeNow(const SettingsBackupDocument& document, const std::filesystem::path& file) {
    const std::string text = textNow(document);
    try {
        const std::filesystem::path target = linkTarget(file);
        const auto status = std::filesystem::status(target);
        if (std::filesystem::is_other(status))
            throw std::system_error(std::make_error_code(std::errc::invalid_argument));
        createDirectories(target.parent_path());
        writeFileAtomically(target, text, 0600);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
}

SettingsBackupDocument readNow(const std::filesystem::path& file) {
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

Task<std::string> SettingsBackupService::text(SettingsBackupDocument document) {
    co_return co_await executor_.run([document = std::move(document)] { return textNow(document); });
}

Task<void> SettingsBackupService::write(SettingsBackupDocument document, std::filesystem::path file) {
    co_await executor_.run(
        [document = std::move(document), file = std::move(file)] { writeNow(document, file); });
}

Task<SettingsBackupDocument> SettingsBackupService::read(std::filesystem::path file) {
    co_return co_await executor_.run([file = std::move(file)] { return readNow(file); });
}

}  // namespace quillmar
