#pragma once
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/BundleInfo.h"
#include "base/Bytes.h"
#include "base/Url.h"
#include "base/Uuid.h"

namespace quillmar {

/// What a node of the user's menu is.
enum class MenuItemType { folder, shortcut, separator };
constexpr auto enumNames(MenuItemType) {
    return std::to_array<std::string_view>({"folder", "shortcut", "separator"});
}

/// What kind of thing a shortcut opens.
enum class ShortcutTargetKind { application, file, folder, webURL };
constexpr auto enumNames(ShortcutTargetKind) {
    return std::to_array<std::string_view>({"application", "file", "folder", "webURL"});
}

/// What a shortcut opens: a kind of thing, and where it is.
struct ShortcutTarget {
    using Kind = ShortcutTargetKind;
    using Value = std::variant<Url, Url, Url, Url>;
    Value value{std::in_place_index<0>, Url::fromFilePath("/")};

    static ShortcutTarget application(Url url) { return {Value(std::in_place_index<0>, std::move(url))}; }
    static ShortcutTarget file(Url url) { return {Value(std::in_place_index<1>, std::move(url))}; }
    static ShortcutTarget folder(Url url) { return {Value(std::in_place_index<2>, std::move(url))}; }
    static ShortcutTarget webURL(Url url) { return {Value(std::in_place_index<3>, std::move(url))}; }

    static constexpr auto caseNames() { return enumNames(Kind{}); }
    Kind kind() const { return static_cast<Kind>(value.index()); }
    /// Where the thing is; a file URL for all but `webURL`.
    const Url& url() const {
        return *std::visit([](const auto& held) { return &held; }, value);
    }

    bool operator==(const ShortcutTarget&) const = default;
};

/// A node of the user's menu.
struct CustomMenuItem {
    Uuid id;
    MenuItemType type = MenuItemType::separator;
    std::string title;                          ///< empty for a separator
    std::optional<ShortcutTarget> target{};     ///< of a shortcut
    std::optional<Bytes> targetBookmarkData{};  ///< stored grant for a local target
    std::optional<std::string> parameters{};    ///< command line of an application
    std::optional<std::string> iconOverridePath{};
    std::optional<Bytes> iconOverrideBookmarkData{};  ///< stored grant for `iconOverridePath`
    std::vector<CustomMenuItem> children{};           ///< of a folder

    bool operator==(const CustomMenuItem&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .required("type", self.type)
            .required("title", self.title)
            .optional("target", self.target)
            .optional("targetBookmarkData", self.targetBookmarkData)
            .optional("parameters", self.parameters)
            .optional("iconOverridePath", self.iconOverridePath)
            .optional("iconOverrideBookmarkData", self.iconOverrideBookmarkData)
            .required("children", self.children);
    }
};

/// The user's own menu, from top to bottom.
struct CustomMenuSettings {
    std::vector<CustomMenuItem> items;

    bool operator==(const CustomMenuSettings&) const = default;
    static void describe(auto& self, auto& io) { io.required("items", self.items); }
};

/// The menu that a new document starts with: the desktop's everyday applications as far as `applications`
/// holds their entries, places, and the web. Every item has a fresh identity.
CustomMenuSettings defaultCustomMenu(const BundleInfo& bundle,
                                     const std::filesystem::path& applications = "/usr/share/applications");

}  // namespace quillmar
