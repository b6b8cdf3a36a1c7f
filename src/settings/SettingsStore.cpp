#include "settings/SettingsStore.h"

#include "base/FileError.h"
#include "base/Files.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumFileBytes = 64u << 20;
/// The file holds the user's keys of picture services.
constexpr mode_t fileMode = 0600;

/// What an interrupted save may have left. There is one writer, so nothing of it is in use.
void removeLeftovers(const std::filesystem::path& file) {
    const std::string prefix = "." + file.filename().string() + ".";
    std::error_code ignored;  // litter does no harm
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path(), ignored)) {
        if (entry.path().filename().string().starts_with(prefix))
            std::filesystem::remove(entry.path(), ignored);
    }
}

void saveNow(const std::filesystem::path& file, const AppSettings& settings) {
    const std::string text = encodeSettings(settings);
    try {
        createDirectories(file.parent_path());
        // A linked file stays a link: people keep their settings under version control.
        std::error_code notThere;
        const std::filesystem::path target = std::filesystem::canonical(file, notThere);
        writeFileAtomically(notThere ? file : target, text, fileMode);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
}

SettingsLoadResult loadNow(const std::filesystem::path& file, const AppSettings& defaults) {
    removeLeftovers(file);
    std::string text;
    try {
        text = readFile(file, maximumFileBytes);
    } catch (const std::system_error& error) {
        std::error_code unknown;
        const bool isDanglingLink = std::filesystem::is_symlink(file, unknown);
        if (error.code() != std::errc::no_such_file_or_directory || isDanglingLink)
            throw FileError(file, error);
        saveNow(file, defaults);
        return {defaults, true};
    }
    return {decodeSettings(text), false};
}

}  // namespace

SettingsStore::SettingsStore(std::filesystem::path settingsFile, AppSettings defaults, Executor& executor)
    : settingsFile_(std::move(settingsFile)), defaults_(std::move(defaults)), executor_(executor) {}

Task<SettingsLoadResult> SettingsStore::load() {
    co_return co_await executor_.run(
        [file = settingsFile_, defaults = defaults_] { return loadNow(file, defaults); });
}

Task<void> SettingsStore::save(AppSettings settings) {
    co_await executor_.run(
        [file = settingsFile_, settings = std::move(settings)] { saveNow(file, settings); });
}

Task<SettingsLoadResult> UnavailableSettingsStore::load() {
    throw SettingsStoreUnavailableError(reason_);
    co_return SettingsLoadResult{};
}

Task<void> UnavailableSettingsStore::save(AppSettings) {
    throw SettingsStoreUnavailableError(reason_);
    co_return;
}

std::string SettingsStoreUnavailableError::message(GeneralLanguage language) const {
    return localized("The Application Support settings location is unavailable (%@)."_key, language,
                     {errorText(reason_, language)});
}

std::unique_ptr<SettingsStoring> makeSettingsStore(
    const std::function<std::filesystem::path()>& applicationSupport, AppSettings defaults,
    Executor& executor) {
    try {
        return std::make_unique<SettingsStore>(applicationSupport() / "settings.json", std::move(defaults),
                                               executor);
    } catch (const std::exception&) {
        return std::make_unique<UnavailableSettingsStore>(std::current_exception());
    }
}

}  // namespace quillmar
