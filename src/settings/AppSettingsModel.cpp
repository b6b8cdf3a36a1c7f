#include "settings/AppSettingsModel.h"

#include <algorithm>

#include "async/Sleep.h"
#include "diagnostics/Log.h"
#include "settings/ReferencedFiles.h"

namespace quillmar {
namespace {

constexpr std::chrono::milliseconds saveDelay{250};
/// Of a transaction that meets one edit of the file after the other.
constexpr int mostTries = 5;

}  // namespace

AppSettingsModel::AppSettingsModel(MainLoop& loop, EventBus& notifications, SettingsStoring& store,
                                   AppSettings defaults, const CacheFileProtection& cacheFiles)
    : notifications_(notifications),
      store_(store),
      cacheFiles_(cacheFiles),
      settings_(std::move(defaults)),
      tasks_(loop) {
    loadTask_ = tasks_.start(load(settingsRevision_));
}

Task<void> AppSettingsModel::load(std::int64_t baseRevision) {
    try {
        SettingsLoadResult result = co_await store_.load();
        createdInitialSettingsFile_ = result.createdInitialSettingsFile;
        const auto updates = std::exchange(pendingInitialUpdates_, {});
        setSettings(std::move(result.settings));
        persistedRevision_ = baseRevision;
        // Their revisions were counted when they were made, which leaves the document ahead of the file.
        for (const SettingsUpdate& update : updates) apply(update);
        loadError_.reset();
        isLoaded_ = true;
        post();
        if (!updates.empty()) scheduleSave();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        canPersist_ = false;
        loadError_ = errorText(error, settings_.general.language);
        pendingInitialUpdates_.clear();
        isLoaded_ = true;
        post();
    }
}

void AppSettingsModel::update(const SettingsUpdate& mutation) {
    if (!isLoaded_) pendingInitialUpdates_.push_back(mutation);
    apply(mutation);
    ++settingsRevision_;
    saveError_.reset();
    post();
    if (isExplicitTransactionInFlight_) {
        deferredTransactionUpdates_.push_back(mutation);
    } else {
        scheduleSaveIfPossible();
    }
}

Task<bool> AppSettingsModel::commit(SettingsUpdate mutation) {
    return uncancelled(tasks_.start(run({std::move(mutation), false})).value());
}

Task<bool> AppSettingsModel::replaceSettings(AppSettings document) {
    return replaceSettings([document = std::move(document)](AppSettings& settings) { settings = document; });
}

Task<bool> AppSettingsModel::replaceSettings(SettingsUpdate mutation) {
    return uncancelled(tasks_.start(run({std::move(mutation), true})).value());
}

Task<bool> AppSettingsModel::flushPendingSave() { return uncancelled(tasks_.start(flush()).value()); }

Task<bool> AppSettingsModel::run(Transaction transaction) {
    if (!isLoaded_) co_await loadTask_.ended();
    // What is replaced in part keeps the rest as it is on disk.
    if (transaction.replacesDocument) co_await follow();
    for (int tries = 1;; ++tries) {
        if (!transaction.replacesDocument && !canPersist_) {
            saveError_ = refusalText();
            co_return false;
        }
        const SettingsSaveAttempt attempt = co_await runOnce(transaction);
        if (!attempt.wasFileChanged || tries == mostTries) co_return !attempt.errorMessage;
        // Their edit came first: it is taken over, and ours is made again on top of it.
        co_await follow();
    }
}

Task<SettingsSaveAttempt> AppSettingsModel::runOnce(Transaction transaction) {
    co_await finishImmediateSave();
    co_await cancelDebouncedSave();

    const AppSettings previousSettings = settings_;
    // Until the outcome is known the files of both documents are needed.
    const CacheLeases previousLeases = cacheLeases_;
    const std::int64_t previousRevision = settingsRevision_;
    isExplicitTransactionInFlight_ = true;
    deferredTransactionUpdates_.clear();
    apply(transaction.mutation);
    ++settingsRevision_;
    saveError_.reset();
    immediateSaveTask_ = tasks_.start(
        attemptSave(settings_, settingsRevision_, transaction.replacesDocument ? Way::replaces : Way::saves));
    isSavingSettings_ = true;
    const SettingsSaveAttempt attempt = co_await immediateSaveTask_.value();
    immediateSaveTask_.reset();
    isSavingSettings_ = false;
    record(attempt);

    const auto deferred = std::exchange(deferredTransactionUpdates_, {});
    isExplicitTransactionInFlight_ = false;
    if (!attempt.errorMessage) {
        if (transaction.replacesDocument) {
            canPersist_ = true;
            loadError_.reset();
        }
    } else {
        setSettings(previousSettings);
        settingsRevision_ = previousRevision;
        for (const SettingsUpdate& update : deferred) {
            apply(update);
            ++settingsRevision_;
        }
    }
    post();
    if (!deferred.empty()) scheduleSaveIfPossible();
    co_return attempt;
}

Task<bool> AppSettingsModel::flush() {
    if (!isLoaded_) co_await loadTask_.ended();
    co_await finishImmediateSave();
    if (persistedRevision_ >= settingsRevision_) co_return true;
    if (!canPersist_) {
        saveError_ = refusalText();
        co_return false;
    }
    co_await cancelDebouncedSave();
    const SettingsSaveAttempt attempt = co_await attemptSave(settings_, settingsRevision_);
    if (!attempt.errorMessage) {
        record(attempt);
        co_return true;
    }
    if (attempt.wasFileChanged) {
        co_await follow();
        if (persistedRevision_ >= settingsRevision_) co_return true;
    }
    if (settingsRevision_ == attempt.revision) saveError_ = attempt.errorMessage;
    co_return false;
}

Task<void> AppSettingsModel::finishImmediateSave() {
    if (!immediateSaveTask_) co_return;
    const auto task = immediateSaveTask_;
    record(co_await task.value());
    // The transaction that made the save may have come first and begun another.
    if (immediateSaveTask_ == task) {
        immediateSaveTask_.reset();
        isSavingSettings_ = false;
    }
}

Task<SettingsSaveAttempt> AppSettingsModel::attemptSave(AppSettings document, std::int64_t revision,
                                                        Way way) {
    SettingsSaveAttempt attempt{revision, {}};
    try {
        if (way == Way::replaces) {
            replacedFile_ = co_await store_.replace(std::move(document));
        } else {
            co_await store_.save(std::move(document));
        }
    } catch (const std::exception& error) {
        attempt.wasFileChanged = dynamic_cast<const SettingsFileChangedError*>(&error) != nullptr;
        attempt.errorMessage = errorText(error, settings_.general.language);
    }
    co_return attempt;
}

void AppSettingsModel::scheduleSaveIfPossible() {
    if (isLoaded_ && canPersist_) scheduleSave();
}

void AppSettingsModel::scheduleSave() {
    saveTask_.cancel();
    saveTask_ = tasks_.start(saveAfterPause(settings_, settingsRevision_));
}

Task<void> AppSettingsModel::saveAfterPause(AppSettings document, std::int64_t revision) {
    do {
        co_await sleepFor(saveDelay);
    } while (isFollowing_);
    if (co_await isCancelled()) co_return;
    const SettingsSaveAttempt attempt = co_await attemptSave(std::move(document), revision);
    if (!attempt.errorMessage) {
        noteSaved(revision);
    } else if (attempt.wasFileChanged) {
        tasks_.spawn(followInLine());
    } else if (!co_await isCancelled() && settingsRevision_ == revision) {
        noteSaveFailure(*attempt.errorMessage);
    }
}

/// Nobody waits for a save in the background, so it says itself that it failed: once for each reason.
void AppSettingsModel::noteSaveFailure(const std::string& message) {
    saveError_ = message;
    if (std::exchange(loggedSaveError_, message) != message)
        logWarning("The settings could not be saved.", "settings", nullptr, {{"reason", message}});
}

Task<void> AppSettingsModel::cancelDebouncedSave() {
    while (saveTask_) {
        const auto task = std::exchange(saveTask_, {});
        task.cancel();
        co_await task.ended();
    }
}

void AppSettingsModel::record(const SettingsSaveAttempt& attempt) {
    if (attempt.errorMessage) {
        saveError_ = attempt.errorMessage;
    } else {
        noteSaved(attempt.revision);
    }
}

void AppSettingsModel::noteSaved(std::int64_t revision) {
    persistedRevision_ = std::max(persistedRevision_, revision);
    loggedSaveError_.clear();
    if (settingsRevision_ == revision) saveError_.reset();
}

void AppSettingsModel::apply(const SettingsUpdate& mutation) {
    AppSettings changed = settings_;
    mutation(changed);
    setSettings(std::move(changed));
}

void AppSettingsModel::setSettings(AppSettings settings) {
    settings_ = std::move(settings);
    CacheLeases leases;
    for (const std::filesystem::path& file : referencedFiles(settings_)) {
        const auto kept = cacheLeases_.find(file);
        leases.emplace(file, kept != cacheLeases_.end() ? kept->second : CacheFileLease(cacheFiles_, file));
    }
    // The old leases end only now, so that no file that both documents need is ever free.
    cacheLeases_ = std::move(leases);
}

void AppSettingsModel::post() { notifications_.post(appSettingsDidChange, settings_); }

std::string AppSettingsModel::refusalText() const {
    if (loadError_) {
        return "The existing settings file could not be loaded (" + *loadError_ +
               "), so this settings change was not saved.";
    }
    return "The existing settings file could not be loaded, so this settings change was not saved.";
}

}  // namespace quillmar
