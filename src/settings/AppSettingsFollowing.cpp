#include "async/Sleep.h"
#include "diagnostics/Log.h"
#include "settings/AppSettingsModel.h"

// What other programs make of the file.

namespace quillmar {

Task<void> AppSettingsModel::followFile() { return uncancelled(tasks_.start(follow()).value()); }

Task<void> AppSettingsModel::followInLine() {
    const auto hold = co_await transactionGate_.acquire();
    co_await follow();
}

Task<void> AppSettingsModel::follow() {
    if (!isLoaded_) co_await loadTask_.ended();
    co_await finishImmediateSave();
    // Once the store has seen an edit it would let a save of ours over it, so none begins until the edit is
    // taken over.
    isFollowing_ = true;
    isExplicitTransactionInFlight_ = true;
    deferredTransactionUpdates_.clear();
    SettingsFileChange change;
    std::optional<std::string> fault;
    try {
        change = co_await store_.reload();
    } catch (const std::exception& error) {
        fault = errorText(error, settings_.general.language);
    }
    std::optional<std::filesystem::path> kept;
    if (change.what == SettingsFileChange::What::edited) {
        co_await cancelDebouncedSave();
        kept = co_await keepUnsaved(change.settings);
    }
    isFollowing_ = false;
    isExplicitTransactionInFlight_ = false;
    const auto deferred = std::exchange(deferredTransactionUpdates_, {});
    if (fault) {
        noteBroken(*std::move(fault));
    } else if (change.what == SettingsFileChange::What::edited) {
        takeOver(std::move(change.settings), std::move(kept), deferred);
    } else if (change.what == SettingsFileChange::What::removed) {
        noteReadable();  // nothing is there that could be lost
    }
    const bool isSaveDue = !saveTask_ || saveTask_.isFinished();
    if (isSaveDue && persistedRevision_ < settingsRevision_) scheduleSaveIfPossible();
}

/// What is ours alone and not on disk yet goes into a file of its own before another document takes its
/// place.
Task<std::optional<std::filesystem::path>> AppSettingsModel::keepUnsaved(AppSettings theirs) {
    if (persistedRevision_ >= settingsRevision_ || settings_ == theirs) co_return std::nullopt;
    try {
        co_return co_await store_.keepUnsaved(settings_);
    } catch (const std::exception&) {
        logError("Unsaved settings could not be kept beside the edited file.", "settings",
                 std::current_exception());
        co_return std::nullopt;
    }
}

void AppSettingsModel::takeOver(AppSettings document, std::optional<std::filesystem::path> kept,
                                const std::vector<SettingsUpdate>& updates) {
    const SettingsTakeover takeover{settings_, kept};
    const bool isOther = settings_ != document;
    if (kept) {
        logWarning("Settings that were not saved yet are kept beside the edited file.", "settings", nullptr,
                   {{"file", kept->string()}});
        unsavedFile_ = std::move(kept);
    }
    setSettings(std::move(document));
    persistedRevision_ = ++settingsRevision_;
    saveError_.reset();
    // They came while the file was read, and so on top of it.
    for (const SettingsUpdate& update : updates) {
        apply(update);
        ++settingsRevision_;
    }
    noteReadable();
    if (!isOther) return;
    logInfo("The settings file was edited and is taken over.", "settings");
    post();
    notifications_.post(settingsWereTakenOver, takeover);
}

void AppSettingsModel::noteReadable() {
    loadError_.reset();
    if (!std::exchange(canPersist_, true)) post();
}

void AppSettingsModel::noteBroken(std::string reason) {
    const bool isKnown = !canPersist_ && loadError_ == reason;
    canPersist_ = false;
    loadError_ = reason;
    if (isKnown) return;
    logWarning("The settings file cannot be read and is left as it is.", "settings", nullptr,
               {{"reason", reason}});
    post();
    notifications_.post(settingsFileBroke, reason);
}

}  // namespace quillmar
