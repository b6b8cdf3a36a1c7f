#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

#include "platform/RemoteNotificationCenter.h"
#include "remote/RemoteWallpaperErrorNotifying.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// A notification that the desktop did not take.
struct RemoteNotificationDeliveryFailure {
    std::string displayID;
    std::string provider;
    std::string errorDescription;
    bool operator==(const RemoteNotificationDeliveryFailure&) const = default;
};

struct AuthorizationRequestFailed {
    std::string errorDescription;
};
using RemoteErrorNotificationDiagnostic =
    std::variant<AuthorizationRequestFailed, RemoteNotificationDeliveryFailure>;

/// Turns failures of picture services into notifications, one for each display. Main thread.
class RemoteErrorNotificationService final : public RemoteWallpaperErrorNotifying {
public:
    using DiagnosticHandler = std::function<void(const RemoteErrorNotificationDiagnostic&)>;

    /// `diagnosticHandler` hears each new trouble with the desktop's notifications once.
    RemoteErrorNotificationService(RemoteNotificationCenter& notificationCenter,
                                   const AppSettingsModel& settingsModel, DiagnosticHandler diagnosticHandler)
        : notificationCenter_(notificationCenter),
          settingsModel_(settingsModel),
          diagnosticHandler_(std::move(diagnosticHandler)) {}

    Task<void> refreshStatus();
    /// Asks the user for leave where that is still open.
    Task<void> ensureAuthorization();
    /// Shows the failure in place of the display's former one, if the user lets us.
    Task<void> post(std::string displayID, std::string provider, std::string message);
    void clearFailure(const std::string& displayID, const std::string& provider);
    Task<void> notify(std::exception_ptr error, DisplayInfo display, WallpaperMode mode) override;

    RemoteNotificationAuthorizationStatus authorizationStatus() const { return authorizationStatus_; }
    const std::optional<std::string>& authorizationRequestErrorDescription() const {
        return authorizationRequestErrorDescription_;
    }
    const std::optional<RemoteNotificationDeliveryFailure>& lastDeliveryFailure() const {
        return lastDeliveryFailure_;
    }

    /// As the desktop last said.
    bool isAuthorized() const;

private:
    GeneralLanguage language() const { return settingsModel_.settings().general.language; }
    void noteDeliveryFailure(RemoteNotificationDeliveryFailure failure);

    RemoteNotificationCenter& notificationCenter_;
    const AppSettingsModel& settingsModel_;
    DiagnosticHandler diagnosticHandler_;
    RemoteNotificationAuthorizationStatus authorizationStatus_ =
        RemoteNotificationAuthorizationStatus::unknown;
    std::optional<std::string> authorizationRequestErrorDescription_;
    std::optional<RemoteNotificationDeliveryFailure> lastDeliveryFailure_;
    std::optional<std::string> lastAuthorizationDiagnosticDescription_;
    std::map<std::string, std::string> lastDeliveryDiagnosticByContext_;
};

/// Writes a diagnostic to the log.
void logNotificationDiagnostic(const RemoteErrorNotificationDiagnostic& diagnostic);

}  // namespace quillmar
