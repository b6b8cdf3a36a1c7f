#include "statusitem/StatusItemController.h"

#include <utility>

#include "diagnostics/Log.h"
#include "wallpaper/WallpaperRotationSchedule.h"

namespace quillmar {
namespace {

using Button = StatusIconClick::Button;

StatusIconStyle styleOf(bool isColorful) {
    return isColorful ? StatusIconStyle::colorful : StatusIconStyle::symbolic;
}

bool hasPage(const ShownPicture& picture) {
    const auto page = picture.credit.sourceURL ? Url::parse(*picture.credit.sourceURL) : std::nullopt;
    return page && (page->scheme() == "https" || page->scheme() == "http");
}

}  // namespace

StatusItemController::StatusItemController(Services services)
    : services_(std::move(services)), pendingLeftClick_(services_.loop), tasks_(services_.loop) {}

void StatusItemController::show() {
    if (std::exchange(isShown_, true)) return;
    observedSettings_ = observe();
    settings_ = services_.notifications.observe<AppSettings>(
        appSettingsDidChange, [this](const AppSettings&) { settingsDidChange(); });
    services_.icon.show(styleOf(observedSettings_.showsColorfulStatusIcon), *this);
}

void StatusItemController::hide() {
    if (!std::exchange(isShown_, false)) return;
    pendingLeftClick_.cancel();
    settings_.cancel();
    services_.icon.hide();
}

StatusItemController::ObservedSettings StatusItemController::observe() const {
    const AppSettingsModel& model = services_.settingsModel;
    const GeneralSettings& general = model.settings().general;
    const auto afterLoad = model.canPersist() ? StatusItemReadiness::ready : StatusItemReadiness::recovery;
    return {.readiness = model.isLoaded() ? afterLoad : StatusItemReadiness::loading,
            .language = general.language,
            .showsColorfulStatusIcon = general.showColorfulStatusIcon,
            .pausesRotations = general.pauseRotations};
}

void StatusItemController::settingsDidChange() {
    const ObservedSettings previous = std::exchange(observedSettings_, observe());
    if (observedSettings_.showsColorfulStatusIcon != previous.showsColorfulStatusIcon)
        services_.icon.setStyle(styleOf(observedSettings_.showsColorfulStatusIcon));
    if (observedSettings_ != previous) services_.icon.contextMenuDidChange();
}

void StatusItemController::displaysDidChange() {
    if (isShown_) services_.icon.contextMenuDidChange();
}

void StatusItemController::clicked(const StatusIconClick& click) {
    const int count = countOf(click);
    const bool asksForMenu =
        click.button == Button::secondary || (click.button == Button::primary && click.withControl);
    if (!isReady() || asksForMenu) {
        pendingLeftClick_.cancel();
        showContextMenu();
    } else if (click.button == Button::middle) {
        pendingLeftClick_.cancel();
        perform(clickBehavior().middleClick);
    } else if (count < 2) {
        scheduleLeftClick();
    } else {
        pendingLeftClick_.cancel();
        perform(clickBehavior().doubleClick);
    }
}

/// How many clicks of the main button have come in a row, each soon after the one before.
int StatusItemController::countOf(const StatusIconClick& click) {
    if (click.button != Button::primary) {
        lastPrimaryClick_.reset();
        return 1;
    }
    const TimePoint now = services_.loop.now();
    const bool follows = lastPrimaryClick_ && now - *lastPrimaryClick_ < services_.icon.doubleClickInterval();
    lastPrimaryClick_ = now;
    clickCount_ = follows ? clickCount_ + 1 : 1;
    return clickCount_;
}

/// The action is that of now, whatever the settings become until it is due.
void StatusItemController::scheduleLeftClick() {
    pendingLeftClick_.set(services_.icon.doubleClickInterval(),
                          [this, action = clickBehavior().leftClick] { perform(action); });
}

void StatusItemController::perform(StatusIconClickAction action) {
    switch (action) {
        case StatusIconClickAction::disabled: return;
        case StatusIconClickAction::openSettings: openSettings(); return;
        // The one menu that there is.
        case StatusIconClickAction::openCustomMenu: showContextMenu(); return;
        case StatusIconClickAction::toggleAllScreensavers:
            logInfo("A click asked for the screensavers, which this version does not have.", "status-item");
            return;
    }
}

void StatusItemController::openSettings() {
    if (services_.settingsModel.isLoaded()) services_.openSettings();
}

void StatusItemController::showContextMenu() { services_.icon.showMenu(contextMenu()); }

/// Made anew each time that it is about to be shown: by then displays show other pictures.
StatusMenu StatusItemController::contextMenu() {
    const ObservedSettings now = observe();
    StatusItemMenuState state{.readiness = now.readiness,
                              .language = now.language,
                              .pausesRotations = now.pausesRotations,
                              .displays = {}};
    for (const DisplayInfo& display : services_.displays.displays())
        state.displays.push_back(describe(display));
    return statusItemContextMenu(state, commands_);
}

StatusItemDisplay StatusItemController::describe(const DisplayInfo& display) const {
    const WallpaperSettings& settings = services_.settingsModel.settings().wallpaper;
    const PictureHistory& history = services_.pictures.history();
    StatusItemDisplay described{.id = display.id, .name = display.localizedName};
    described.hasNext = history.neighbour(display.id, HistoryStep::forward) != nullptr ||
                        rotationDescriptor(settings, display.id).has_value();
    described.hasPrevious = history.neighbour(display.id, HistoryStep::back) != nullptr;
    const ShownPicture* picture = history.current(display.id);
    if (!picture || !picture->fileURL) return described;
    const DisplayWallpaperSettings* entry = findEntry(settings.displays, display.id);
    described.hasFile = true;
    // A file that was chosen by its name comes as long as nobody gives the display another.
    described.canTrash = !entry || entry->mode.kind() != WallpaperModeKind::image;
    described.hasPage = hasPage(*picture);
    return described;
}

void StatusItemController::chosen(int number) {
    const StatusItemCommand* command = commands_.find(number);
    if (!command) return;
    switch (command->action) {
        case StatusItemCommand::Action::openSettings: openSettings(); return;
        case StatusItemCommand::Action::quit: services_.quit(); return;
        case StatusItemCommand::Action::carryOut: tasks_.spawn(carryOut(*command)); return;
    }
}

Task<void> StatusItemController::carryOut(StatusItemCommand command) {
    const ControlReply reply =
        co_await services_.carryOut({.arguments = std::move(command.words), .workingDirectory = "/"});
    if (reply.status != 0) co_await showFailure(std::move(command.title), reply.errors);
}

/// One at a time: whoever chooses the same five times reads of it once.
Task<void> StatusItemController::showFailure(std::string title, std::string text) {
    if (isFailureShown_) co_return;
    const GeneralLanguage language = observedSettings_.language;
    isFailureShown_ = true;
    co_await services_.alerts.runModal({.style = Alert::Style::warning,
                                        .title = localized("“%@” Did Not Work"_key, language, {title}),
                                        .text = std::move(text),
                                        .buttons = {localized("OK"_key, language)}});
    isFailureShown_ = false;
}

}  // namespace quillmar
