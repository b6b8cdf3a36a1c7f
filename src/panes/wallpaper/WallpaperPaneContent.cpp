#include <algorithm>
#include <cmath>

#include "base/IsAmong.h"
#include "base/LocalDateTime.h"
#include "panes/wallpaper/WallpaperPane.h"

namespace quillmar {
namespace {

constexpr std::size_t shortIDLength = 8;

/// From the bottom left to the top left, which is that of the whole arrangement.
PixelRect boundsOf(const CGRectCodable& frame, const std::vector<DisplayInfo>& displays) {
    double left = frame.x;
    double top = frame.maxY();
    for (const DisplayInfo& display : displays) {
        left = std::min(left, display.frame.x);
        top = std::max(top, display.frame.maxY());
    }
    return {std::llround(frame.x - left), std::llround(top - frame.maxY()), std::llround(frame.width),
            std::llround(frame.height)};
}

std::string pictureTitle(const ShownPicture* picture) {
    return picture && picture->credit.title ? " – " + *picture->credit.title : std::string();
}

}  // namespace

std::optional<DisplayInfo> WallpaperPane::connected(const std::string& displayID) const {
    const std::vector<DisplayInfo> displays = services_.displays.displays();
    const auto found = std::ranges::find(displays, displayID, &DisplayInfo::id);
    return found == displays.end() ? std::nullopt : std::optional(*found);
}

std::vector<std::string> WallpaperPane::absentDisplays() const {
    std::vector<std::string> ids;
    for (const auto& entry : services_.settingsModel.settings().wallpaper.displays) {
        const bool isSetUp = entry.mode.kind() != WallpaperModeKind::disabled || !entry.savedModes.empty();
        if (isSetUp) ids.push_back(entry.displayID);
    }
    for (const std::string& id : drafts_.displays()) {
        if (!isAmong(id, ids)) ids.push_back(id);
    }
    const std::vector<DisplayInfo> displays = services_.displays.displays();
    std::erase_if(ids, [&](const auto& id) { return isAmong(id, displays, &DisplayInfo::id); });
    return ids;
}

std::string WallpaperPane::nameOf(const std::string& displayID) const {
    if (const auto known = names_.find(displayID); known != names_.end()) return known->second;
    // The settings keep no names; the end of the ID tells one from another.
    const std::size_t at = displayID.size() > shortIDLength ? displayID.size() - shortIDLength : 0;
    return localized("Display %@"_key, language(), {displayID.substr(at)});
}

std::optional<WallpaperPane::Obstacle> WallpaperPane::firstObstacle() const {
    for (const std::string& id : drafts_.displays()) {
        if (const auto problem = problemOf(drafts_.of(id).mode, language()))
            return Obstacle{id, problem->message};
    }
    return std::nullopt;
}

SettingsPane WallpaperPane::content() const {
    SettingsPane pane;
    pane.arrangement = arrangement();
    pane.progress = progress();
    pane.isBusy = !pane.progress.empty();
    if (selected_.empty()) return pane;
    pane.preview = preview();
    pane.groups = {state(), picker()};
    std::ranges::move(editor(), std::back_inserter(pane.groups));
    pane.groups.push_back(actionsGroup());
    pane.actions = footer();
    for (SettingsGroup& group : pane.groups) {
        for (SettingsRow& row : group.rows) row.isEnabled = row.isEnabled && mayEdit();
    }
    return pane;
}

SettingsArrangement WallpaperPane::arrangement() const {
    const std::vector<DisplayInfo> displays = services_.displays.displays();
    SettingsArrangement arrangement{.id = "display",
                                    .title = localized("Displays"_key, language()),
                                    .connected = {},
                                    .absentTitle = localized("Not Connected"_key, language()),
                                    .absent = {}};
    for (const DisplayInfo& display : displays) {
        SettingsArrangement::Display& added = arrangement.connected.emplace_back(shown(display.id, &display));
        added.bounds = boundsOf(display.frame, displays);
    }
    for (const std::string& id : absentDisplays()) arrangement.absent.push_back(shown(id, nullptr));
    return arrangement;
}

SettingsArrangement::Display WallpaperPane::shown(const std::string& displayID,
                                                  const DisplayInfo* info) const {
    SettingsArrangement::Display shown{.id = displayID,
                                       .name = info ? info->localizedName : nameOf(displayID),
                                       .isPrimary = info && info->isMain,
                                       .isSelected = displayID == selected_,
                                       .hasUnsavedDraft = drafts_.hasDraft(displayID),
                                       .hasFailed = failures_.contains(displayID) ||
                                                    services_.coordinator.lastFailures().contains(displayID),
                                       .thumbnail = thumbnails_.of(displayID),
                                       .accessibleName = {}};
    shown.accessibleName = shown.name;
    const auto add = [&](bool isSo, TextKey text) {
        if (isSo) shown.accessibleName += ", " + localized(text, language());
    };
    add(shown.isPrimary, "main display"_key);
    add(shown.isSelected, "chosen"_key);
    add(!info, "not connected"_key);
    add(shown.hasUnsavedDraft, "has changes that are not applied"_key);
    add(shown.hasFailed, "does not show what it should"_key);
    return shown;
}

std::optional<SettingsPreview> WallpaperPane::preview() const {
    const WallpaperMode mode = drafts_.of(selected_).mode;
    const auto display = connected(selected_);
    if (!display || mode.kind() == WallpaperModeKind::disabled) return std::nullopt;
    SettingsPreview preview{.title = localized("Preview"_key, language()), .canvas = canvasSize(*display)};
    if (const auto problem = problemOf(mode, language())) {
        preview.text = problem->message;
    } else if (DraftPreview::canDraw(mode.kind())) {
        preview.picture = preview_.picture();
        preview.isBusy = preview_.isBusy();
        if (preview_.failure()) preview.text = errorText(preview_.failure(), language());
    } else if (isRemote(mode.kind())) {
        preview.text = localized("The service sends its picture when this is applied."_key, language());
    } else {
        preview.text = localized("This wallpaper mode is not available yet."_key, language());
    }
    return preview;
}

SettingsGroup WallpaperPane::picker() const {
    const WallpaperModeKind chosen = drafts_.of(selected_).mode.kind();
    const WallpaperModeKind saved = drafts_.saved(selected_).mode.kind();
    SettingsRow::Gallery gallery{.cards = {}, .chosen = std::string(enumName(chosen))};
    for (const WallpaperModeKind kind : wallpaperPickerOrder) {
        // What cannot be shown yet is not offered; where the settings name it it stands there.
        const bool isOffered = natureOf(kind) != PresentationNature::live || kind == chosen || kind == saved;
        const PresentationKindRow& row = rowOf(presentationKind(kind));
        if (!isOffered) continue;
        gallery.cards.push_back(
            {.id = std::string(enumName(kind)),
             .title = localized(row.title, language()),
             .subtitle = localized(*row.wallpaperSubtitle, language()),
             .iconName = "quillmar-mode-" + std::string(row.imageAssetName) + "-symbolic"});
    }
    const std::string title = localized("Wallpaper"_key, language());
    return {.id = "modes", .title = title, .rows = {{.id = "mode", .title = title, .control = gallery}}};
}

std::vector<SettingsGroup> WallpaperPane::editor() const {
    const WallpaperMode mode = drafts_.of(selected_).mode;
    auto groups = editorGroups(mode, language(), [this](const std::string& group) {
        const auto found = unfolded_.find(group);
        return found == unfolded_.end() || !found->second;
    });
    if (natureOf(mode.kind()) == PresentationNature::live) {
        groups.push_back(
            {.id = "unavailable",
             .rows = {{.id = "unavailable",
                       .title = localized("This wallpaper mode is not available yet."_key, language())}}});
    }
    for (SettingsGroup& group : groups) {
        for (SettingsRow& row : group.rows) {
            if (row.id != "imageURL") continue;
            if (std::string problem = draftFiles_.problemOf(selected_); !problem.empty())
                row.error = std::move(problem);
            row.isEnabled = !draftFiles_.isImporting(selected_);
        }
    }
    return groups;
}

std::string WallpaperPane::nextAttempt() const {
    const auto& entries = services_.rotation.schedule().entries;
    const auto next = entries.find(selected_);
    if (next == entries.end() || services_.settingsModel.settings().general.pauseRotations) return {};
    return shortLocalText(next->second.nextAttemptDate, language());
}

std::string WallpaperPane::nowText() const {
    if (!connected(selected_))
        return localized("It is not connected. What you change is kept until it is back."_key, language());
    const WallpaperModeKind kind = drafts_.saved(selected_).mode.kind();
    std::string text =
        localized(title(kind), language()) + pictureTitle(services_.pictures.history().current(selected_));
    if (const std::string next = nextAttempt(); !next.empty())
        text += "\n" + localized("Next change: %@"_key, language(), {next});
    return text;
}

SettingsGroup WallpaperPane::state() const {
    SettingsGroup group{.id = "state", .title = nameOf(selected_)};
    group.rows.push_back(
        {.id = "now", .title = localized("Shows now"_key, language()), .subtitle = nowText()});
    addFailures(group);
    addDraftNotes(group);
    return group;
}

void WallpaperPane::addFailures(SettingsGroup& group) const {
    const auto& failures = services_.coordinator.lastFailures();
    const auto applied = failures_.find(selected_);
    const auto standing = failures.find(selected_);
    if (applied != failures_.end() || standing != failures.end()) {
        std::string reason = applied != failures_.end() ? applied->second : standing->second.message;
        // By itself it tries what the settings say, not what was not applied.
        if (const std::string next = nextAttempt(); applied == failures_.end() && !next.empty())
            reason += "\n" + localized("Next attempt: %@"_key, language(), {next});
        group.rows.push_back({.id = "retry",
                              .title = localized("This display does not show what it should"_key, language()),
                              .subtitle = std::move(reason),
                              .control = SettingsRow::Action{.label = localized("Retry"_key, language())},
                              .isEnabled = !isApplying_ && !working_.contains(selected_),
                              .isWarning = true});
    }
    const auto leftOut = services_.coordinator.leftOut().find(selected_);
    if (leftOut == services_.coordinator.leftOut().end() || leftOut->second.empty()) return;
    group.rows.push_back({.id = "leftOut",
                          .title = localized("Pictures that were left out: %lld"_key, language(),
                                             {static_cast<int>(leftOut->second.size())}),
                          .subtitle = leftOut->second.front().message});
}

void WallpaperPane::addDraftNotes(SettingsGroup& group) const {
    if (drafts_.isOvertaken(selected_) && !isApplying_) {
        group.rows.push_back(
            {.id = "reload",
             .title = localized("Changed elsewhere"_key, language()),
             .subtitle = localized("The settings of this display were changed while you edited them here. "
                                   "Your changes are kept, and not applied yet."_key,
                                   language()),
             .control = SettingsRow::Action{.label = localized("Use Those"_key, language())},
             .isWarning = true});
    }
    const auto obstacle = firstObstacle();
    if (!obstacle || obstacle->displayID == selected_) return;
    group.rows.push_back(
        {.id = "showProblem",
         .title = localized("%@ cannot be applied as it is"_key, language(), {nameOf(obstacle->displayID)}),
         .subtitle = obstacle->message,
         .control = SettingsRow::Action{.label = localized("Show It"_key, language())},
         .isWarning = true});
}

SettingsGroup WallpaperPane::actionsGroup() const {
    const WallpaperModeKind kind = drafts_.saved(selected_).mode.kind();
    const auto label = [this](TextKey text) {
        return SettingsRow::Action{.label = localized(text, language())};
    };
    const bool isOne = services_.displays.displays().size() < 2;
    return {.id = "more",
            .rows = {
                {.id = "next",
                 .title = localized("Next picture"_key, language()),
                 .subtitle = localized("Another picture of what is applied to this display."_key, language()),
                 .control = label("Next"_key),
                 .isEnabled = connected(selected_) && isStill(kind) && !working_.contains(selected_)},
                {.id = "copy",
                 .title = localized("Copy to the other displays"_key, language()),
                 .subtitle = localized("They are changed when you apply it."_key, language()),
                 .control = label("Copy"_key),
                 .isEnabled = !isOne},
                {.id = "pause",
                 .title = localized("Pause"_key, language()),
                 .subtitle = localized("Pictures do not change by themselves meanwhile."_key, language()),
                 .control = SettingsRow::Toggle{services_.settingsModel.settings().general.pauseRotations}}}};
}

std::vector<SettingsPaneAction> WallpaperPane::footer() const {
    const bool hasDraft = !drafts_.displays().empty();
    const bool isFree = mayEdit() && !isApplying_;
    return {{.id = "revert",
             .label = localized("Revert"_key, language()),
             .isEnabled = isFree && (hasDraft || draftFiles_.isImporting())},
            {.id = "apply",
             .label = localized("Apply"_key, language()),
             .isSuggested = true,
             .isEnabled = isFree && hasDraft && !draftFiles_.isImporting() && !firstObstacle()}};
}

std::string WallpaperPane::progress() const {
    if (draftFiles_.isImporting(selected_)) return localized("Copying the picture…"_key, language());
    if (!isApplying_ && working_.empty()) return {};
    const PresentationKindRow& row = rowOf(presentationKind(drafts_.saved(selected_).mode.kind()));
    if (!row.service) return localized("Making the picture…"_key, language());
    return localized("Asking %@…"_key, language(), {localized(*row.service, language())});
}

}  // namespace quillmar
