#include "linux/tray/TrayStatusIcon.h"

#include "linux/tray/EmbeddedIcon.h"
#include "linux/tray/PopupMenu.h"
#include "linux/tray/StatusNotifierItem.h"
#include "linux/tray/TrayArrival.h"

namespace quillmar {

/// The icon from `show` to `hide`.
struct TrayStatusIcon::Shown {
    Shown(MainLoop& loop, const std::filesystem::path& themes, StatusIconStyle wanted,
          StatusIconAnswering& answers)
        : files(themes),
          style(wanted),
          answering(answers),
          notifier(loop, files, style,
                   {.answering = answering,
                    .clicked = [this](StatusIconClick click, auto at) { clicked(click, at); },
                    .shownDidChange = [this](bool isShown) { notifierIsShown(isShown); }}) {}

    void clicked(StatusIconClick click, std::optional<PanelPlace> at) {
        place = at;
        answering.clicked(click);
    }
    void notifierIsShown(bool isShown) {
        isInPanel = isShown;
        embedded.reset();
        embedWherePossible();
    }
    /// Where there is no tray the toolkit's icon would only take memory; one whose tray has died makes the
    /// toolkit complain when it moves to the next.
    void embedWherePossible() {
        if (isInPanel || (embedded && embedded->isInTray()) || !TrayArrival::isThere()) return;
        embedded.reset();
        embedded = std::make_unique<EmbeddedIcon>(
            files, style, [this](StatusIconClick click, auto at) { clicked(click, at); });
    }

    PanelIconFiles files;
    StatusIconStyle style;
    StatusIconAnswering& answering;
    std::optional<PanelPlace> place;  ///< of the last click; none: the pointer's
    std::unique_ptr<PopupMenu> menu;
    bool isInPanel = true;  ///< as far as is known
    std::unique_ptr<EmbeddedIcon> embedded;
    TrayArrival arrival{[this] { embedWherePossible(); }};
    StatusNotifierItem notifier;
};

TrayStatusIcon::TrayStatusIcon(MainLoop& loop, std::filesystem::path themes)
    : loop_(loop), themes_(std::move(themes)) {}
TrayStatusIcon::~TrayStatusIcon() = default;

void TrayStatusIcon::show(StatusIconStyle style, StatusIconAnswering& answering) {
    shown_.reset();
    shown_ = std::make_unique<Shown>(loop_, themes_, style, answering);
}

void TrayStatusIcon::setStyle(StatusIconStyle style) {
    if (!shown_) return;
    shown_->style = style;
    shown_->notifier.setStyle(style);
    if (shown_->embedded) shown_->embedded->setStyle(style);
}

void TrayStatusIcon::contextMenuDidChange() {
    if (shown_) shown_->notifier.menuDidChange();
}

void TrayStatusIcon::showMenu(StatusMenu menu) {
    if (!shown_) return;
    shown_->menu.reset();
    shown_->menu = std::make_unique<PopupMenu>(
        menu, shown_->place, [shown = shown_.get()](int command) { shown->answering.chosen(command); });
}

void TrayStatusIcon::hide() { shown_.reset(); }

Duration TrayStatusIcon::doubleClickInterval() const {
    int milliseconds = 0;
    g_object_get(gtk_settings_get_default(), "gtk-double-click-time", &milliseconds, nullptr);
    return std::chrono::milliseconds(milliseconds);
}

}  // namespace quillmar
