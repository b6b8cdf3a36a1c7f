#pragma once
#include <optional>
#include <string>

#include "platform/LoginItemRegistering.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// Whether the session starts the program at login, and the wish that it does. Main thread.
class LoginItemService {
public:
    LoginItemService(LoginItemRegistering& registrar, const AppSettingsModel& settingsModel)
        : registrar_(registrar), settingsModel_(settingsModel) {}

    /// As it was found last.
    LoginItemRegistrationStatus status() const { return status_; }
    /// Whether the user has asked for it, also where the session holds it back.
    bool isEnabled() const {
        return status_ == LoginItemRegistrationStatus::enabled ||
               status_ == LoginItemRegistrationStatus::requiresApproval;
    }
    /// Why the last wish was not granted; empty when it was.
    const std::optional<std::string>& errorMessage() const { return errorMessage_; }

    Task<void> refresh();
    /// Where the session does something else than the settings say: a sentence for the user. Empty where it
    /// does as they say, and while they cannot be read.
    std::optional<std::string> difference() const;
    /// False when it did not work; `errorMessage` then says why.
    Task<bool> setEnabled(bool isWanted);

private:
    LoginItemRegistering& registrar_;
    const AppSettingsModel& settingsModel_;
    LoginItemRegistrationStatus status_ = LoginItemRegistrationStatus::notRegistered;
    std::optional<std::string> errorMessage_;
};

}  // namespace quillmar
