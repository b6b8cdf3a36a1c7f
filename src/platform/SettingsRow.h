#pragma once
#include <cstddef>
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
    /// A line of text, told with every letter that is typed.
    struct Entry {
        std::string text;
        bool isSecret = false;    ///< a key or a password: shown only when asked for
        std::string reveal = {};  ///< what asking for it is called
        bool operator==(const Entry&) const = default;
    };
    struct Number {
        double value = 0;
        double minimum = 0;
        double maximum = 0;
        double step = 1;
        int digits = 0;         ///< after the point
        std::string unit = {};  ///< in words; empty if there is none
        bool operator==(const Number&) const = default;
    };
    /// A length of time in seconds, shown as hours, minutes and seconds. It comes as a number.
    struct Duration {
        double seconds = 0;
        double minimum = 0;
        double maximum = 0;
        bool operator==(const Duration&) const = default;
    };
    /// "#rrggbb", to be typed or picked; what is typed comes as it is, be it a color or not.
    struct Color {
        std::string text;
        std::vector<std::string> palette = {};  ///< the only colors to be had; any color where it is empty
        std::string none = {};  ///< what no color, an empty text, is called; empty if there must be one
        bool operator==(const Color&) const = default;
    };
    /// One of a few, each a card with a picture. The choice comes as the card's ID.
    struct Gallery {
        struct Card {
            std::string id;
            std::string title;
            std::string subtitle = {};
            std::string iconName = {};
            bool operator==(const Card&) const = default;
        };
        std::vector<Card> cards;
        std::string chosen;  ///< the ID of one of them
        bool operator==(const Gallery&) const = default;
    };
    /// A small button beside the control. Pressed it comes as an intent with its ID for the row.
    struct SideAction {
        std::string id;
        std::string label;
        std::string iconName = {};
        bool isEnabled = true;
        bool operator==(const SideAction&) const = default;
    };

    std::string id;
    std::string title;
    std::string subtitle = {};
    std::variant<Text, Toggle, Choice, Action, Entry, Number, Duration, Color, Gallery> control = {};
    bool isEnabled = true;
    bool isWarning = false;  ///< the subtitle says that something is not as it should be
    std::string error = {};  ///< why what the control holds cannot be taken; stands at it
    std::vector<SideAction> sideActions = {};

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

}  // namespace quillmar
