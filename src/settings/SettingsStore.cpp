#include "settings/SettingsStore.h"

namespace quillmar {

SettingsStore::SettingsStore(std::filesystem::path settingsFile, AppSettings defaults, Executor& executor,
                             FirstRunFile firstRun)
    : file_(std::make_shared<SettingsFile>(std::move(settingsFile), std::move(defaults),
                                           firstRun == FirstRunFile::isWritten)),
      executor_(executor) {}

Task<SettingsLoadResult> SettingsStore::load() {
    co_return co_await executor_.run([file = file_] { return file->load(); });
}

Task<void> SettingsStore::save(AppSettings settings) {
    co_await executor_.run([file = file_, settings = std::move(settings)] { file->save(settings); });
}

Task<SettingsFileChange> SettingsStore::reload() {
    co_return co_await executor_.run([file = file_] { return file->reload(); });
}

Task<std::optional<std::filesystem::path>> SettingsStore::replace(AppSettings settings) {
    co_return co_await executor_.run(
        [file = file_, settings = std::move(settings)] { return file->replace(settings); });
}

Task<std::filesystem::path> SettingsStore::keepUnsaved(AppSettings settings) {
    co_return co_await executor_.run(
        [file = file_, settings = std::move(settings)] { return file->keepUnsaved(settings); });
}

Task<SettingsLoadResult> UnavailableSettingsStore::load() {
    throw SettingsStoreUnavailableError(reason_);
    co_return SettingsLoadResult{};
}

Task<void> UnavailableSettingsStore::save(AppSettings) {
    throw SettingsStoreUnavailableError(reason_);
    co_return;
}

Task<SettingsFileChange> UnavailableSettingsStore::reload() {
    throw SettingsStoreUnavailableError(reason_);
    co_return SettingsFileChange{};
}

Task<std::optional<std::filesystem::path>> UnavailableSettingsStore::replace(AppSettings) {
    throw SettingsStoreUnavailableError(reason_);
    co_return std::nullopt;
}

Task<std::filesystem::path> UnavailableSettingsStore::keepUnsaved(AppSettings) {
    throw SettingsStoreUnavailableError(reason_);
    co_return std::filesystem::path{};
}

std::string SettingsStoreUnavailableError::message(GeneralLanguage language) const {
    return localized("The Application Support settings location is unavailable (%@)."_key, language,
                     {errorText(reason_, language)});
}

std::unique_ptr<SettingsStoring> makeSettingsStore(
    const std::function<std::filesystem::path()>& applicationSupport, AppSettings defaults,
    Executor& executor, FirstRunFile firstRun) {
    try {
        return std::make_unique<SettingsStore>(applicationSupport() / settingsFileName, std::move(defaults),
                                               executor, firstRun);
    } catch (const std::exception&) {
        return std::make_unique<UnavailableSettingsStore>(std::current_exception());
    }
}

}  // namespace quillmar
