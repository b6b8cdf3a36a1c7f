#pragma once
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/SettingsDisplays.h"
#include "platform/SettingsRow.h"

namespace quillmar {

/// What the head of a pane shows large.
struct SettingsHero {
    std::string iconName;
    std::string title;
    std::string text;

    bool operator==(const SettingsHero&) const = default;
};

/// A pane of the Settings window.
struct SettingsPane {
    std::optional<SettingsHero> hero = {};
    std::optional<SettingsArrangement> arrangement = {};  ///< above the groups
    std::optional<SettingsPreview> preview = {};          ///< beside or below the arrangement
    std::vector<SettingsGroup> groups = {};
    std::vector<SettingsPaneAction> actions = {};  ///< at the foot, in sight wherever the groups are scrolled
    bool isBusy = false;                           ///< something that was asked for goes on
    std::string progress = {};                     ///< what goes on, in words; empty if that is not said
};

/// How light the window is.
enum class WindowTheme { automatic, light, dark };

/// What surrounds the panes.
struct SettingsFrame {
    struct Section {
        std::string id;
        std::string label;
        std::string iconName;
        bool operator==(const Section&) const = default;
    };
    std::string title;
    std::vector<Section> sections;
    std::string current;      ///< the ID of one of them
    std::string banner = {};  ///< what stands above every pane; empty if nothing
    WindowTheme theme = WindowTheme::automatic;
    std::string back;  ///< names of the window's own controls
    std::string menu;
    std::string about;
    std::string quit;
};

/// What was done to a row: its button was pressed, it was switched, one of its choices was taken, a text was
/// typed or a card or a display chosen by its ID, a number set.
struct SettingsIntent {
    std::string row;
    std::variant<std::monostate, bool, std::size_t, std::string, double> value = {};
};

/// What the Settings window shows and where its user's wishes go. Main thread.
class SettingsContent {
public:
    virtual ~SettingsContent() = default;
    virtual SettingsFrame frame() const = 0;
    /// The pane of the current section.
    virtual SettingsPane pane() const = 0;
    /// Called after anything above became another, also by a wish; never from within a wish.
    virtual void setChangeHandler(std::function<void()> handler) = 0;

    /// Goes to a section. One that is not shown, or an empty one, leaves the window where it is. Where
    /// something is unsaved the user is asked first.
    virtual void navigate(const std::string& section) = 0;
    virtual void act(SettingsIntent intent) = 0;
    virtual void setExpanded(const std::string& group, bool isExpanded) = 0;
    /// Calls `close` when nothing unsaved stands against it, at once or after the user was asked.
    virtual void requestClose(std::function<void()> close) = 0;
    virtual void quit() = 0;
};

}  // namespace quillmar
