#pragma once
#include <functional>
#include <map>
#include <optional>

#include "async/TaskScope.h"
#include "base/Uuid.h"
#include "panes/SettingsSections.h"
#include "platform/AlertPresenting.h"

namespace quillmar {

/// Stands before a pane whose draft was changed and not applied: who leaves it, or closes the window, is
/// asked first what becomes of the draft. Main thread.
class SettingsUnsavedChangesCoordinator {
public:
    /// A pane's draft.
    struct Registration {
        std::function<bool()> hasChanges;
        std::function<Task<bool>()> apply;  ///< false: it could not be saved, and the pane says why
        std::function<void()> discard;
    };
    /// The question that is open.
    struct UnsavedChangesPrompt {
        Uuid id;
        SettingsSection section;
    };
    SettingsUnsavedChangesCoordinator(MainLoop& loop, AlertPresenting& alerts,
                                      std::function<GeneralLanguage()> language)
        : alerts_(alerts), language_(std::move(language)), tasks_(loop) {}

    void add(SettingsSection section, Registration draft) { registrations_[section] = std::move(draft); }
    void remove(SettingsSection section) { registrations_.erase(section); }

    /// Does `action` at once where the section has nothing unsaved, else when the user has let the draft be
    /// applied or thrown away. While a question is open, the latest action is the one that it decides on.
    void leave(SettingsSection section, std::function<void()> action);

    const std::optional<UnsavedChangesPrompt>& prompt() const { return prompt_; }
    /// Whether a draft is being applied.
    bool isResolving() const { return isResolving_; }

private:
    class Asking;
    Task<void> ask(SettingsSection section);
    Task<bool> mayLeave(SettingsSection section);

    AlertPresenting& alerts_;
    std::function<GeneralLanguage()> language_;
    std::map<SettingsSection, Registration> registrations_;
    std::optional<UnsavedChangesPrompt> prompt_;
    bool isResolving_ = false;
    std::function<void()> pendingAction_;
    TaskScope tasks_;
};

}  // namespace quillmar
