#include "statusitem/StatusItemMenu.h"

#include <algorithm>
#include <array>

namespace quillmar {
namespace {

using Kind = StatusMenuItem::Kind;
using Action = StatusItemCommand::Action;

/// What can be done with the picture of one display.
struct PictureEntry {
    TextKey title;
    const char* image;
    const char* verb;  ///< of "quillmar wallpaper"
    bool StatusItemDisplay::* isPossible;
};
constexpr std::array pictureEntries{
    PictureEntry{"Next Picture"_key, "go-next", "next", &StatusItemDisplay::hasNext},
    PictureEntry{"Previous Picture"_key, "go-previous", "previous", &StatusItemDisplay::hasPrevious},
    PictureEntry{"Favourite"_key, "emblem-favorite", "favourite", &StatusItemDisplay::hasFile},
    PictureEntry{"Move to Trash"_key, "user-trash", "trash", &StatusItemDisplay::canTrash},
    PictureEntry{"Open Page"_key, "web-browser", "open", &StatusItemDisplay::hasPage},
};

StatusMenuItem separator() { return {.kind = Kind::separator}; }

class MenuBuilder {
public:
    MenuBuilder(const StatusItemMenuState& state, StatusItemCommands& commands)
        : state_(state), commands_(commands) {}

    StatusMenu contextMenu() {
        StatusMenu menu;
        if (state_.readiness == StatusItemReadiness::loading) {
            menu.push_back({.title = text("Loading…"_key), .isEnabled = false});
            menu.push_back(separator());
        }
        if (state_.readiness == StatusItemReadiness::ready) {
            menu.push_back(wallpaper());
            menu.push_back(separator());
        }
        if (state_.readiness != StatusItemReadiness::loading) {
            menu.push_back(
                command(Action::openSettings, text("Settings"_key), "preferences-system", ",", {}));
            menu.push_back(separator());
        }
        menu.push_back(command(Action::quit, text("Quit"_key), "application-exit", "q", {}));
        return menu;
    }

private:
    std::string text(TextKey key) const { return localized(key, state_.language); }

    StatusMenuItem command(Action action, std::string title, const char* image, const char* key,
                           std::vector<std::string> words) {
        const int number = commands_.numberOf({action, title, std::move(words)});
        return {.title = std::move(title), .image = image, .key = key, .command = number};
    }

    StatusMenu pictureCommands(const StatusItemDisplay& display) {
        StatusMenu menu;
        for (const PictureEntry& entry : pictureEntries) {
            menu.push_back(command(Action::carryOut, text(entry.title), entry.image, "",
                                   {"wallpaper", entry.verb, display.id}));
            menu.back().isEnabled = display.*entry.isPossible;
        }
        return menu;
    }

    StatusMenuItem wallpaper() {
        StatusMenuItem item{
            .kind = Kind::submenu, .title = text("Wallpaper"_key), .image = "preferences-desktop-wallpaper"};
        if (state_.displays.size() == 1) {
            item.items = pictureCommands(state_.displays.front());
        } else {
            for (const StatusItemDisplay& display : state_.displays) {
                item.items.push_back(
                    {.kind = Kind::submenu, .title = display.name, .items = pictureCommands(display)});
            }
        }
        if (!item.items.empty()) item.items.push_back(separator());
        const char* turned = state_.pausesRotations ? "--pauseRotations=false" : "--pauseRotations=true";
        item.items.push_back(
            command(Action::carryOut, text("Pause"_key), "", "", {"general", "set", turned}));
        item.items.back().kind = Kind::check;
        item.items.back().isChecked = state_.pausesRotations;
        return item;
    }

    const StatusItemMenuState& state_;
    StatusItemCommands& commands_;
};

}  // namespace

int StatusItemCommands::numberOf(StatusItemCommand command) {
    const auto found = std::ranges::find(commands_, command);
    const auto number = static_cast<int>(found - commands_.begin());
    if (found == commands_.end()) commands_.push_back(std::move(command));
    return number;
}

const StatusItemCommand* StatusItemCommands::find(int number) const {
    const auto at = static_cast<std::size_t>(number);
    return number >= 0 && at < commands_.size() ? &commands_[at] : nullptr;
}

StatusMenu statusItemContextMenu(const StatusItemMenuState& state, StatusItemCommands& commands) {
    return MenuBuilder(state, commands).contextMenu();
}

}  // namespace quillmar
