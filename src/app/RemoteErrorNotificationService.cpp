#include "app/RemoteErrorNotificationService.h"

#include "diagnostics/Log.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {
namespace {

using Status = RemoteNotificationAuthorizationStatus;

/// What people call the service of a mode.
std::string providerName(WallpaperModeKind kind, GeneralLanguage language) {
    const auto& service = rowOf(presentationKind(kind)).service;
    return service ? localized(*service, language) : std::string();
}

/// The museum that an error comes from, under its own name; nothing of an error that is no museum's.
std::optional<std::string> museumOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const RemoteImageProviderError& failure) {
        constexpr auto sources = enumNames(MuseumsSource{}).size();
        for (std::size_t i = 0; i < sources; ++i) {
            if (failure.provider() == displayText(static_cast<MuseumsSource>(i))) return failure.provider();
        }
    } catch (const std::exception&) {
        // Only a service's own errors say whose they are.
    }
    return std::nullopt;
}

std::string contextOf(const std::string& displayID, const std::string& provider) {
    return displayID + "|" + provider;
}

}  // namespace

Task<void> RemoteErrorNotificationService::refreshStatus() {
    authorizationStatus_ = co_await notificationCenter_.authorizationStatus();
}

Task<void> RemoteErrorNotificationService::ensureAuthorization() {
    co_await refreshStatus();
    if (authorizationStatus_ != Status::notDetermined) co_return;
    try {
        co_await notificationCenter_.requestAuthorization();
        authorizationRequestErrorDescription_.reset();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        authorizationRequestErrorDescription_ = errorText(error, language());
    }
    if (authorizationRequestErrorDescription_ &&
        authorizationRequestErrorDescription_ != lastAuthorizationDiagnosticDescription_) {
        lastAuthorizationDiagnosticDescription_ = authorizationRequestErrorDescription_;
        diagnosticHandler_(AuthorizationRequestFailed{*authorizationRequestErrorDescription_});
    }
    co_await refreshStatus();
}

bool RemoteErrorNotificationService::isAuthorized() const {
    return authorizationStatus_ == Status::authorized || authorizationStatus_ == Status::provisional ||
           authorizationStatus_ == Status::ephemeral;
}

Task<void> RemoteErrorNotificationService::post(std::string displayID, std::string provider,
                                                std::string message) {
    co_await refreshStatus();
    if (!isAuthorized()) co_return;
    const std::string identifier = "remote-wallpaper-error-" + displayID;
    try {
        co_await notificationCenter_.removeDelivered(identifier);
        co_await notificationCenter_.add(
            {identifier, localized("Couldn’t update %@"_key, language(), {provider}), std::move(message)});
        clearFailure(displayID, provider);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        noteDeliveryFailure({displayID, provider, errorText(error, language())});
    }
}

void RemoteErrorNotificationService::clearFailure(const std::string& displayID, const std::string& provider) {
    if (lastDeliveryFailure_ && lastDeliveryFailure_->displayID == displayID &&
        lastDeliveryFailure_->provider == provider) {
        lastDeliveryFailure_.reset();
    }
    lastDeliveryDiagnosticByContext_.erase(contextOf(displayID, provider));
}

void RemoteErrorNotificationService::noteDeliveryFailure(RemoteNotificationDeliveryFailure failure) {
    std::string& last = lastDeliveryDiagnosticByContext_[contextOf(failure.displayID, failure.provider)];
    lastDeliveryFailure_ = failure;
    if (last == failure.errorDescription) return;
    last = failure.errorDescription;
    diagnosticHandler_(std::move(failure));
}

Task<void> RemoteErrorNotificationService::notify(std::exception_ptr error, DisplayInfo display,
                                                  WallpaperMode mode) {
    const std::string provider = museumOf(error).value_or(providerName(mode.kind(), language()));
    co_await post(display.id, provider, errorText(error, language()));
}

void logNotificationDiagnostic(const RemoteErrorNotificationDiagnostic& diagnostic) {
    if (const auto* request = std::get_if<AuthorizationRequestFailed>(&diagnostic)) {
        logWarning("Notification authorization could not be requested.", "notifications", nullptr,
                   {{"error", request->errorDescription}});
        return;
    }
    const auto& [displayID, provider, error] = std::get<RemoteNotificationDeliveryFailure>(diagnostic);
    logWarning("A remote error notification could not be scheduled.", "notifications", nullptr,
               {{"display_id", displayID}, {"provider", provider}, {"error", error}});
}

}  // namespace quillmar
