#include "modes/ManagedScreensaverSettings.h"

namespace quillmar {
namespace {

constexpr double shortestStartDelay = 60;
constexpr double longestStartDelay = 86399;  // 23:59:59

using Names = std::map<std::string, std::string>;

/// The shortcuts that the entries seen so far have enabled.
class ShortcutCheck {
public:
    ShortcutCheck(const Names& names, GeneralLanguage language) : names_(names), language_(language) {}

    std::optional<std::string> problemOf(const DisplayManagedScreensaverSettings& entry) {
        const auto& shortcut = entry.options.keyboardShortcut;
        if (!entry.options.keyboardShortcutEnabled) return std::nullopt;
        if (!shortcut) {
            return localized("Record a keyboard shortcut or turn off the shortcut option."_key, language_);
        }
        for (const DisplayManagedScreensaverSettings* earlier : seen_) {
            if (earlier->options.keyboardShortcut != shortcut) continue;
            return localized("That keyboard shortcut is already assigned to %@."_key, language_,
                             {nameOf(earlier->displayID)});
        }
        seen_.push_back(&entry);
        return std::nullopt;
    }

private:
    std::string nameOf(const std::string& displayID) const {
        const auto found = names_.find(displayID);
        if (found != names_.end() && !found->second.empty()) return found->second;
        return localized("another display"_key, language_);
    }

    const Names& names_;
    GeneralLanguage language_;
    std::vector<const DisplayManagedScreensaverSettings*> seen_;
};

bool isStartDelaySound(const ManagedScreensaverOptions& options) {
    if (!options.startAutomatically) return true;
    return options.startDelaySeconds >= shortestStartDelay && options.startDelaySeconds <= longestStartDelay;
}

}  // namespace

std::optional<ScreensaverApplyIssue> ManagedScreensaverSettings::firstApplyIssue(
    const Names& connectedNames, GeneralLanguage language, FileReadable isReadable) const {
    ShortcutCheck shortcuts(connectedNames, language);
    for (const DisplayManagedScreensaverSettings& entry : displays) {
        if (!connectedNames.contains(entry.displayID)) continue;
        if (const auto error = entry.mode.validationError(isReadable)) {
            return {{entry.displayID, errorText(*error, language)}};
        }
        if (!isStartDelaySound(entry.options)) {
            return {
                {entry.displayID,
                 localized("Set the automatic start delay between one minute and 23:59:59."_key, language)}};
        }
        if (auto problem = shortcuts.problemOf(entry)) return {{entry.displayID, *std::move(problem)}};
    }
    return std::nullopt;
}

}  // namespace quillmar
