#pragma once
#include <exception>
#include <filesystem>
#include <memory>

#include "async/Executor.h"
#include "base/Localization.h"
#include "settings/SettingsFile.h"

namespace quillmar {

/// In the program's data folder.
inline constexpr const char* settingsFileName = "settings.json";

/// Whether a store that finds no file writes that of a first run.
enum class FirstRunFile { isWritten, isLeftOut };

/// The settings file behind an executor. A file that cannot be read is left as it is, byte for byte.
class SettingsStore final : public SettingsStoring {
public:
    /// `defaults` is the document of a first run. The executor must be serial: loads and saves never overlap.
    SettingsStore(std::filesystem::path settingsFile, AppSettings defaults, Executor& executor,
                  FirstRunFile firstRun = FirstRunFile::isWritten);
    Task<SettingsLoadResult> load() override;
    Task<void> save(AppSettings settings) override;
    Task<SettingsFileChange> reload() override;
    Task<std::optional<std::filesystem::path>> replace(AppSettings settings) override;
    Task<std::filesystem::path> keepUnsaved(AppSettings settings) override;

private:
    std::shared_ptr<SettingsFile> file_;  ///< of the jobs that are under way, too
    Executor& executor_;
};

/// Stands in where there is no place for a settings file: every operation fails with the reason.
class UnavailableSettingsStore final : public SettingsStoring {
public:
    /// `reason` is why there is no place.
    explicit UnavailableSettingsStore(std::exception_ptr reason) : reason_(std::move(reason)) {}
    Task<SettingsLoadResult> load() override;
    Task<void> save(AppSettings settings) override;
    Task<SettingsFileChange> reload() override;
    Task<std::optional<std::filesystem::path>> replace(AppSettings settings) override;
    Task<std::filesystem::path> keepUnsaved(AppSettings settings) override;

private:
    std::exception_ptr reason_;
};

/// There is no place for a settings file.
class SettingsStoreUnavailableError final : public AppLocalizableError {
public:
    explicit SettingsStoreUnavailableError(std::exception_ptr reason) : reason_(std::move(reason)) {}
    std::string message(GeneralLanguage language) const override;

private:
    std::exception_ptr reason_;
};

/// The store of "settings.json" in `applicationSupport()`, or the unavailable one with the reason of its
/// failure.
std::unique_ptr<SettingsStoring> makeSettingsStore(
    const std::function<std::filesystem::path()>& applicationSupport, AppSettings defaults,
    Executor& executor, FirstRunFile firstRun = FirstRunFile::isWritten);

}  // namespace quillmar
