#pragma once
#include <deque>
#include <vector>

#include "async/WaitList.h"
#include "settings/SettingsStoring.h"

namespace quillmar {

/// A store in memory whose disk a test can slow down and break.
class FakeSettingsStore final : public SettingsStoring {
public:
    AppSettings onDisk;
    std::vector<AppSettings> saves;      ///< every save that reached the disk
    std::optional<AppSettings> unsaved;  ///< kept beside the file
    bool isFirstRun = false;

    /// Somebody else writes the file.
    void isEdited(AppSettings settings) {
        onDisk = std::move(settings);
        foreign_ = SettingsFileChange::What::edited;
        loadFailure_.clear();
    }
    /// Somebody else writes what cannot be read.
    void isBroken(std::string reason) {
        loadFailure_ = std::move(reason);
        foreign_ = SettingsFileChange::What::edited;
    }
    void isRemoved() {
        loadFailure_.clear();
        foreign_ = SettingsFileChange::What::removed;
    }

    void loadFails(std::string reason) { loadFailure_ = std::move(reason); }
    /// The next saves fail, as many as reasons are given.
    void nextSaveFails(std::string reason) { saveFailures_.push_back(std::move(reason)); }
    /// Operations wait from now on until they are let through.
    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    Task<SettingsLoadResult> load() override {
        while (isHeld_) co_await held_.waitUncancelled();
        if (!loadFailure_.empty()) throw std::runtime_error(loadFailure_);
        co_return SettingsLoadResult{onDisk, isFirstRun};
    }
    Task<void> save(AppSettings settings) override {
        std::string failure;
        if (!saveFailures_.empty()) {
            failure = saveFailures_.front();
            saveFailures_.pop_front();
        }
        while (isHeld_) co_await held_.waitUncancelled();
        if (!failure.empty()) throw std::runtime_error(failure);
        if (foreign_ == SettingsFileChange::What::edited) throw SettingsFileChangedError();
        onDisk = settings;
        saves.push_back(std::move(settings));
    }
    Task<SettingsFileChange> reload() override {
        while (isHeld_) co_await held_.waitUncancelled();
        if (!loadFailure_.empty()) throw std::runtime_error(loadFailure_);
        const auto what = std::exchange(foreign_, SettingsFileChange::What::nothing);
        co_return SettingsFileChange{what, onDisk};
    }
    Task<std::optional<std::filesystem::path>> replace(AppSettings settings) override {
        foreign_ = SettingsFileChange::What::nothing;
        const bool wasUnreadable = !loadFailure_.empty();
        co_await save(std::move(settings));
        loadFailure_.clear();
        if (!wasUnreadable) co_return std::nullopt;
        co_return "settings.json.unreadable";
    }
    Task<std::filesystem::path> keepUnsaved(AppSettings settings) override {
        unsaved = std::move(settings);
        co_return "settings.json.unsaved";
    }

private:
    SettingsFileChange::What foreign_ = SettingsFileChange::What::nothing;
    std::string loadFailure_;
    std::deque<std::string> saveFailures_;
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
