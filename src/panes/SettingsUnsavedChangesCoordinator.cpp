#include "panes/SettingsUnsavedChangesCoordinator.h"

namespace quillmar {

void SettingsUnsavedChangesCoordinator::leave(SettingsSection section, std::function<void()> action) {
    const auto draft = registrations_.find(section);
    if (tasks_.runningCount() == 0 && (draft == registrations_.end() || !draft->second.hasChanges())) {
        action();
        return;
    }
    pendingAction_ = std::move(action);
    if (tasks_.runningCount() == 0) tasks_.spawn(ask(section));
}

/// Closes the question on every way out of it, also when the draft's owner fails.
class SettingsUnsavedChangesCoordinator::Asking {
public:
    Asking(SettingsUnsavedChangesCoordinator& owner, SettingsSection section) : owner_(owner) {
        owner_.prompt_ = UnsavedChangesPrompt{Uuid::random(), section};
    }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    ~Asking() {
        owner_.isResolving_ = false;
        owner_.prompt_.reset();
    }

private:
    SettingsUnsavedChangesCoordinator& owner_;
};

Task<void> SettingsUnsavedChangesCoordinator::ask(SettingsSection section) {
    bool isFree = false;
    {
        const Asking asking(*this, section);
        isFree = co_await mayLeave(section);
    }
    const auto action = std::exchange(pendingAction_, nullptr);
    if (isFree && action) action();
}

Task<bool> SettingsUnsavedChangesCoordinator::mayLeave(SettingsSection section) {
    const GeneralLanguage language = language_();
    enum Button : std::size_t { apply, discard, cancel };
    Alert alert;
    alert.title = localized("Apply your changes?"_key, language);
    alert.text = localized("The changes in “%@” are not applied yet."_key, language,
                           {localized(rowOf(section).label, language)});
    alert.buttons = {localized("Apply"_key, language), localized("Discard Changes"_key, language),
                     localized("Cancel"_key, language)};
    alert.closingButton = cancel;
    const std::size_t answer = co_await alerts_.runModal(std::move(alert));
    // The pane may have gone, or saved its draft in another way, while the question was open.
    const auto found = registrations_.find(section);
    if (answer == cancel) co_return false;
    if (found == registrations_.end() || !found->second.hasChanges()) co_return true;
    const Registration draft = found->second;
    if (answer == discard) {
        draft.discard();
        co_return true;
    }
    isResolving_ = true;
    co_return co_await draft.apply();
}

}  // namespace quillmar
