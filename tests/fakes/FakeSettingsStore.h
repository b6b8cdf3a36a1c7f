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
    std::vector<AppSettings> saves;  ///< every save that reached the disk
    bool isFirstRun = false;

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
        onDisk = settings;
        saves.push_back(std::move(settings));
    }

private:
    std::string loadFailure_;
    std::deque<std::string> saveFailures_;
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
