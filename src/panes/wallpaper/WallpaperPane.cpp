#include "panes/wallpaper/WallpaperPane.h"

#include <algorithm>

#include "base/IsAmong.h"
#include "panes/PaneAlerts.h"

namespace quillmar {

WallpaperPane::WallpaperPane(Services services, AlertPresenting& alerts, FileChoosing& chooser,
                             std::function<void()> changed)
    : services_(services),
      alerts_(alerts),
      changed_(std::move(changed)),
      drafts_(services.settingsModel),
      draftFiles_({.loop = services.loop,
                   .settingsModel = services.settingsModel,
                   .chooser = chooser,
                   .imports = services.imports,
                   .files = services.files,
                   .cacheFiles = services.cacheFiles},
                  drafts_, [this](const std::string& id) { edited(id); }),
      thumbnails_({.loop = services.loop,
                   .displays = services.displays,
                   .desktop = services.desktop,
                   .writer = services.writer,
                   .renderer = services.renderer},
                  [this] { changed_(); }),
      preview_(services.loop, services.renderer, services.files, [this] { changed_(); }),
      following_(services.coordinator.observeChanges([this](const std::string&) {
          if (isVisible_) thumbnails_.refresh();
          changed_();
      })),
      tasks_(services.loop) {}

void WallpaperPane::didAppear() {
    isVisible_ = true;
    displaysDidChange();
}

void WallpaperPane::didDisappear() {
    isVisible_ = false;
    thumbnails_.clear();
    preview_.clear();
}

void WallpaperPane::settingsDidChange() {
    // A draft that fails is none of the settings' again.
    if (!isApplying_) drafts_.settingsDidChange();
    leaveGoneDisplay();
    refreshPreview();
}

void WallpaperPane::displaysDidChange() {
    if (!isVisible_) return;
    const std::vector<DisplayInfo> displays = services_.displays.displays();
    for (const DisplayInfo& display : displays) names_[display.id] = display.localizedName;
    leaveGoneDisplay();
    thumbnails_.refresh();
    refreshPreview();
    changed_();
}

/// One that is neither connected nor set up any more is on no map: another is chosen.
void WallpaperPane::leaveGoneDisplay() {
    const std::vector<DisplayInfo> displays = services_.displays.displays();
    if (connected(selected_) || isAmong(selected_, absentDisplays()) || displays.empty()) return;
    const auto main = std::ranges::find_if(displays, &DisplayInfo::isMain);
    selected_ = main == displays.end() ? displays.front().id : main->id;
}

SettingsUnsavedChangesCoordinator::Registration WallpaperPane::unsavedDraft() {
    return {.hasChanges = [this] { return !drafts_.displays().empty() || draftFiles_.isImporting(); },
            .apply = [this] { return apply(); },
            .discard = [this] { revert(); }};
}

void WallpaperPane::setExpanded(const std::string& group, bool isExpanded) {
    unfolded_[group] = isExpanded;
    changed_();
}

void WallpaperPane::act(const SettingsIntent& intent) {
    const auto* text = std::get_if<std::string>(&intent.value);
    const bool* isOn = std::get_if<bool>(&intent.value);
    if (intent.row == "display") {
        if (text) select(*text);
        return;
    }
    if (intent.row == "showProblem") {
        if (const auto obstacle = firstObstacle()) select(obstacle->displayID);
        return;
    }
    if (!mayEdit()) return;
    if (intent.row == "apply" || (intent.row == "retry" && drafts_.hasDraft(selected_))) {
        tasks_.spawn(applyAndTell());
    } else if (intent.row == "revert") {
        revert();
    } else if (intent.row == "reload") {
        drafts_.discard(selected_);
        edited(selected_);
    } else if (intent.row == "retry" || intent.row == "next") {
        tasks_.spawn(work(intent.row == "next" ? Work::next : Work::retry, selected_));
    } else if (intent.row == "pause") {
        if (isOn) tasks_.spawn(setPaused(*isOn));
    } else if (intent.row == "copy") {
        copyToOthers();
    } else if (intent.row == "mode") {
        if (text) chooseMode(*text);
    } else if (intent.row == "imageURL" || intent.row == "folderURL") {
        draftFiles_.choose(selected_);
    } else {
        WallpaperMode mode = drafts_.of(selected_).mode;
        if (!change(mode, intent)) return;
        drafts_.edit(selected_, [&](DisplayWallpaperSettings& entry) { entry.mode = mode; });
        edited(selected_);
    }
}

void WallpaperPane::select(const std::string& displayID) {
    if (!connected(displayID) && !isAmong(displayID, absentDisplays())) return;
    selected_ = displayID;
    refreshPreview();
    changed_();
}

void WallpaperPane::chooseMode(const std::string& kind) {
    const auto chosen = enumFromName<WallpaperModeKind>(kind);
    if (!chosen || *chosen == drafts_.of(selected_).mode.kind()) return;
    draftFiles_.forget(selected_);
    drafts_.edit(selected_, [&](DisplayWallpaperSettings& entry) { entry.selectMode(*chosen); });
    edited(selected_);
}

void WallpaperPane::copyToOthers() {
    const WallpaperMode mode = drafts_.of(selected_).mode;
    for (const DisplayInfo& display : services_.displays.displays()) {
        if (display.id == selected_) continue;
        draftFiles_.forget(display.id);
        drafts_.edit(display.id, [&](DisplayWallpaperSettings& entry) {
            entry.selectMode(mode.kind());
            entry.mode = mode;
        });
    }
    edited(selected_);
}

void WallpaperPane::revert() {
    draftFiles_.forgetAll();
    drafts_.discardAll();
    failures_.clear();
    edited(selected_);
}

void WallpaperPane::edited(const std::string& displayID) {
    failures_.erase(displayID);
    draftFiles_.cleanUp();
    leaveGoneDisplay();
    refreshPreview();
    changed_();
}

void WallpaperPane::refreshPreview() {
    const auto display = connected(selected_);
    const WallpaperMode mode = drafts_.of(selected_).mode;
    if (isVisible_ && display && DraftPreview::canDraw(mode.kind()) && !problemOf(mode, language())) {
        preview_.show(*display, mode);
    } else {
        preview_.clear();
    }
}

Task<bool> WallpaperPane::apply() {
    // Who leaves while a picture is copied means that picture too.
    if (const auto refused = co_await draftFiles_.settled()) {
        select(*refused);
        co_return false;
    }
    if (isApplying_) co_return false;
    const std::vector<std::string> ids = drafts_.displays();
    if (const auto obstacle = firstObstacle()) {
        select(obstacle->displayID);  // where the reason stands at its field
        co_return false;
    }
    if (!co_await mayOverwrite(ids)) co_return false;
    DisplayIDs present;
    for (const std::string& id : ids) {
        failures_.erase(id);
        if (connected(id)) present.insert(id);
    }
    isApplying_ = true;
    changed_();
    const auto [change, passedOver] = drafts_.change(ids);
    const WallpaperApplyBatchResult batch = co_await services_.coordinator.apply(change, std::move(present));
    isApplying_ = false;
    note(batch, ids, *passedOver);
    if (batch.transactionFailureMessage) {
        co_await tell(alerts_, "Quillmar Couldn’t Save Settings"_key, *batch.transactionFailureMessage,
                      language());
    }
    co_return !batch.hasFailure() && passedOver->empty();
}

Task<void> WallpaperPane::applyAndTell() { co_await apply(); }

/// What was changed elsewhere meanwhile is only replaced when the user says so.
Task<bool> WallpaperPane::mayOverwrite(std::vector<std::string> displayIDs) {
    std::erase_if(displayIDs, [this](const std::string& id) { return !drafts_.isOvertaken(id); });
    if (displayIDs.empty()) co_return true;
    const bool isAgreed =
        co_await confirm(alerts_, "Replace What Was Changed Elsewhere?"_key,
                         "The settings of a display were changed while you edited them here. Your changes "
                         "would replace those."_key,
                         "Replace"_key, language());
    if (isAgreed) std::ranges::for_each(displayIDs, [this](const auto& id) { drafts_.rebase(id); });
    co_return isAgreed;
}

void WallpaperPane::note(const WallpaperApplyBatchResult& batch, const std::vector<std::string>& displayIDs,
                         const DisplayIDs& passedOver) {
    for (const WallpaperDisplayApplyResult& result : batch.displays) {
        if (result.isFailed()) failures_[result.displayID] = *result.failureMessage;
    }
    for (const WallpaperRollbackFailure& failure : batch.rollbackFailures)
        failures_[failure.displayID] += " " + failure.message;
    for (const std::string& id : displayIDs) {
        const bool isSaved = !batch.transactionFailureMessage && !passedOver.contains(id);
        if (isSaved && !failures_.contains(id)) drafts_.rebase(id);
    }
    if (!failures_.empty() && !failures_.contains(selected_)) selected_ = failures_.begin()->first;
    draftFiles_.cleanUp();
    refreshPreview();
    changed_();
}

Task<void> WallpaperPane::work(Work work, std::string displayID) {
    if (!working_.insert(displayID).second) co_return;
    changed_();
    // What fails is said by the display's own state, as everywhere.
    if (work == Work::next) {
        co_await services_.coordinator.showNext({displayID});
    } else {
        co_await services_.coordinator.enqueue(DisplayIDs{displayID}, WallpaperApplyReason::userInitiated);
    }
    working_.erase(displayID);
    changed_();
}

Task<void> WallpaperPane::setPaused(bool isPaused) {
    AppSettingsModel& model = services_.settingsModel;
    bool isSaved = false;
    {
        const auto hold = co_await model.transactionGate().acquire();
        isSaved = co_await model.commit(
            [isPaused](AppSettings& document) { document.general.pauseRotations = isPaused; });
    }
    changed_();
    if (!isSaved) {
        co_await tell(alerts_, "Quillmar Couldn’t Save Settings"_key, model.saveError().value_or(""),
                      language());
    }
}

}  // namespace quillmar
