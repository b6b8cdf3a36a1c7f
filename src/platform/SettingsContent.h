#pragma once
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillmar {

/// One line of a pane: a text, and what can be done with it. All texts are in the user's language; `id` is
/// the same in every language.
struct SettingsRow {
    /// A switch.
    struct Toggle {
        bool isOn = false;
        bool operator==(const Toggle&) const = default;
    };
    /// One of a few.
    struct Choice {
        std::vector<std::string> choices;
        std::size_t chosen = 0;
        bool operator==(const Choice&) const = default;
    };
    /// A button.
    struct Action {
        std::string label;
        bool isDestructive = false;
        bool operator==(const Action&) const = default;
    };
    /// Nothing to be done: the text alone says it.
    struct Text {
        bool operator==(const Text&) const = default;
    };

    std::string id;
    std::string title;
    std::string subtitle = {};
    std::variant<Text, Toggle, Choice, Action> control = {};
    bool isEnabled = true;
    bool isWarning = false;  ///< the subtitle says that something is not as it should be

    bool operator==(const SettingsRow&) const = default;
};

/// Rows that belong together, under a title; as a card that opens and closes where `isExpanded` is there.
struct SettingsGroup {
    std::string id;
    std::string title = {};
    std::string description = {};
    std::optional<bool> isExpanded = {};
    std::vector<SettingsRow> rows = {};

    bool operator==(const SettingsGroup&) const = default;
};

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
    std::vector<SettingsGroup> groups = {};
    bool isBusy = false;  ///< something that was asked for goes on
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

/// What was done to a row: it was switched, one of its choices was taken, its button was pressed.
struct SettingsIntent {
    std::string row;
    std::variant<std::monostate, bool, std::size_t> value = {};
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
