#pragma once
#include <filesystem>
#include <memory>

#include "async/Executor.h"
#include "settings/SettingsStoring.h"

namespace quillmar {

/// The settings file, written whole and in one step. A file that cannot be read is left as it is, byte for
/// byte.
class SettingsStore final : public SettingsStoring {
public:
    /// `defaults` is the document of a first run. The executor must be serial: loads and saves never overlap.
    SettingsStore(std::filesystem::path settingsFile, AppSettings defaults, Executor& executor);
    Task<SettingsLoadResult> load() override;
    Task<void> save(AppSettings settings) override;

private:
    std::filesystem::path settingsFile_;
    AppSettings defaults_;
    Executor& executor_;
};

/// Stands in where there is no place for a settings file: every operation fails with the reason.
class UnavailableSettingsStore final : public SettingsStoring {
public:
    explicit UnavailableSettingsStore(std::string reason) : reason_(std::move(reason)) {}
    Task<SettingsLoadResult> load() override;
    Task<void> save(AppSettings settings) override;

private:
    std::string reason_;
};

class SettingsStoreUnavailableError : public std::runtime_error {
public:
    explicit SettingsStoreUnavailableError(const std::string& reason)
        : std::runtime_error("The Application Support settings location is unavailable (" + reason + ").") {}
};

/// The store of "settings.json" in `applicationSupport()`, or the unavailable one with the reason of its
/// failure.
std::unique_ptr<SettingsStoring> makeSettingsStore(
    const std::function<std::filesystem::path()>& applicationSupport, AppSettings defaults,
    Executor& executor);

}  // namespace quillmar
