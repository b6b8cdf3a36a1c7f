#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "async/EventBus.h"
#include "async/TaskScope.h"
#include "settings/SettingsFileNotices.h"
#include "settings/SettingsStoring.h"
#include "settings/SettingsTransactionGate.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

/// Posted with the present document after the load, after each `update` and after each transaction.
inline constexpr NotificationName<AppSettings> appSettingsDidChange{"QuillmarAppSettingsDidChange"};

/// A change of the document, kept as a value so that it can be made again on another document.
using SettingsUpdate = std::function<void(AppSettings&)>;

/// Outcome of one immediate save.
struct SettingsSaveAttempt {
    std::int64_t revision = 0;
    std::optional<std::string> errorMessage;
    bool wasFileChanged = false;  ///< it failed because somebody else wrote the file
};

/// The one owner of the settings. Changes are visible at once and reach the disk a moment later, or as
/// transactions that reach it or are taken back. A file that could not be read is never written over, nor is
/// what another program wrote: a valid edit is taken over as it stands. Main thread only.
class AppSettingsModel {
public:
    /// Starts the load. `settings()` is `defaults` until it ends. Every file that the wallpapers, Lock
    /// Screens and screensavers of the present document name is leased.
    AppSettingsModel(MainLoop& loop, EventBus& notifications, SettingsStoring& store, AppSettings defaults,
                     const CacheFileProtection& cacheFiles);

    /// The present document; the reference stays, what it shows changes.
    const AppSettings& settings() const { return settings_; }
    /// Whether the load has ended, well or not.
    bool isLoaded() const { return isLoaded_; }
    /// False from the moment that the existing file could not be read until it is mended, removed or
    /// replaced.
    bool canPersist() const { return canPersist_; }
    /// Why the file could not be read; nothing when it was read.
    const std::optional<std::string>& loadError() const { return loadError_; }
    /// Text of the latest save failure of the present revision.
    const std::optional<std::string>& saveError() const { return saveError_; }
    /// Whether a transaction is on its way to the disk.
    bool isSavingSettings() const { return isSavingSettings_; }
    /// Whether the load found no file and made one: a first run.
    bool createdInitialSettingsFile() const { return createdInitialSettingsFile_; }

    /// Waits for the end of the load, however it ends.
    Task<void> loaded() const { return loadTask_.ended(); }

    /// The ordinary change: never fails, and is saved with those around it 250 ms after the last one.
    void update(const SettingsUpdate& mutation);
    /// A transaction. True when the change is on disk; on false the document is as before, and `saveError`
    /// says why. Hold `transactionGate` around it. It runs to its end even when the calling task ends.
    Task<bool> commit(SettingsUpdate mutation);
    /// A transaction that replaces the whole document, also when the file could not be read: that one is kept
    /// beside the new one. As `commit` otherwise.
    Task<bool> replaceSettings(AppSettings document);
    /// The same with a change of what is on disk.
    Task<bool> replaceSettings(SettingsUpdate mutation);
    /// Where the last replacement kept the file that could not be read; empty if it could be.
    const std::optional<std::filesystem::path>& replacedFile() const { return replacedFile_; }
    /// Where those of our changes are kept that an edit of the file overtook; empty if none.
    const std::optional<std::filesystem::path>& unsavedFile() const { return unsavedFile_; }
    /// Looks at the file, and takes over what another program made of it. Hold `transactionGate` around it.
    Task<void> followFile();
    /// Waits until everything is on disk; false when it cannot be, and `saveError` says why.
    Task<bool> flushPendingSave();

    /// The line in which transactions wait for each other.
    SettingsTransactionGate& transactionGate() { return transactionGate_; }

private:
    using CacheLeases = std::map<std::filesystem::path, CacheFileLease>;
    struct Transaction {
        SettingsUpdate mutation;
        bool replacesDocument = false;
    };

    Task<void> load(std::int64_t baseRevision);
    Task<bool> run(Transaction transaction);
    Task<SettingsSaveAttempt> runOnce(Transaction transaction);
    Task<bool> flush();
    enum class Way { saves, replaces };
    Task<SettingsSaveAttempt> attemptSave(AppSettings document, std::int64_t revision, Way way = Way::saves);
    Task<void> follow();
    Task<void> followInLine();
    Task<std::optional<std::filesystem::path>> keepUnsaved(AppSettings theirs);
    void takeOver(AppSettings document, std::optional<std::filesystem::path> kept,
                  const std::vector<SettingsUpdate>& updates);
    Task<void> saveAfterPause(AppSettings document, std::int64_t revision);
    Task<void> finishImmediateSave();
    Task<void> cancelDebouncedSave();
    void scheduleSave();
    void scheduleSaveIfPossible();
    void record(const SettingsSaveAttempt& attempt);
    void noteSaved(std::int64_t revision);
    void apply(const SettingsUpdate& mutation);
    void setSettings(AppSettings settings);
    void post();
    void noteReadable();
    void noteBroken(std::string reason);
    void noteSaveFailure(const std::string& message);
    std::string refusalText() const;

    EventBus& notifications_;
    SettingsStoring& store_;
    const CacheFileProtection& cacheFiles_;
    AppSettings settings_;
    CacheLeases cacheLeases_;
    bool isLoaded_ = false;
    bool canPersist_ = true;
    std::optional<std::string> loadError_;
    std::optional<std::string> saveError_;
    std::string loggedSaveError_;
    std::optional<std::filesystem::path> replacedFile_;
    std::optional<std::filesystem::path> unsavedFile_;
    bool isFollowing_ = false;  ///< the file is looked at, and nothing may be written
    bool isSavingSettings_ = false;
    bool createdInitialSettingsFile_ = false;
    std::int64_t settingsRevision_ = 0;
    std::int64_t persistedRevision_ = 0;
    std::vector<SettingsUpdate> pendingInitialUpdates_;
    bool isExplicitTransactionInFlight_ = false;
    std::vector<SettingsUpdate> deferredTransactionUpdates_;
    SettingsTransactionGate transactionGate_;
    TaskHandle<void> loadTask_;
    TaskHandle<void> saveTask_;
    TaskHandle<SettingsSaveAttempt> immediateSaveTask_;
    TaskScope tasks_;
};

}  // namespace quillmar
