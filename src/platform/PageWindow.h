#pragma once
#include <functional>
#include <string>
#include <vector>

#include "platform/SettingsContent.h"

namespace quillmar {

/// What a first run shows. All texts are in the user's language; an `id` is the same in every language.
struct WelcomePage {
    struct Choice {
        std::string id;
        std::string title;
        std::string text;
        std::string iconName;
        bool operator==(const Choice&) const = default;
    };
    std::string title;
    std::string iconName;
    std::string badge;
    std::string heading;
    std::string text;
    std::string question;
    std::vector<Choice> choices;
    std::string footer;
    std::string notNow;
    std::string openSettings;
    WindowTheme theme = WindowTheme::automatic;

    /// The user's wishes on this page, beside the IDs of the choices.
    static constexpr const char* notNowWish = "notNow";
    static constexpr const char* openSettingsWish = "openSettings";
    bool operator==(const WelcomePage&) const = default;
};

/// What became new, the newest version first.
struct ChangelogPage {
    struct Section {
        std::string title;
        std::vector<std::string> items;
        bool operator==(const Section&) const = default;
    };
    struct Release {
        std::string title;
        std::string label;
        std::vector<Section> sections;
        bool operator==(const Release&) const = default;
    };
    std::string title;
    std::vector<Release> releases;
    std::string close;
    WindowTheme theme = WindowTheme::automatic;
    bool operator==(const ChangelogPage&) const = default;
};

/// The user wants the window gone, by its own button or key.
inline constexpr const char* closeWish = "close";

/// A window that shows one page and knows nothing about it. It is made when it is first shown. Main thread.
template <class Page>
class PageWindowing {
public:
    virtual ~PageWindowing() = default;
    /// What the user wishes: an ID of the page, or `closeWish`. The window does nothing by itself. Taken away
    /// with an empty one before who handles the wishes dies; the window goes with it.
    virtual void setWishHandler(std::function<void(const std::string&)> handler) = 0;
    /// Shows the page and comes to the front. Throws `AppLocalizableError` where there is no window to be
    /// had.
    virtual void show(const Page& page) = 0;
    /// Shows another page where the window is; nothing where it is not shown.
    virtual void update(const Page& page) = 0;
    virtual void close() = 0;
    virtual bool isVisible() const = 0;
};

using WelcomeWindowing = PageWindowing<WelcomePage>;
using ChangelogWindowing = PageWindowing<ChangelogPage>;

}  // namespace quillmar
