#pragma once
#include <cstdint>
#include <map>
#include <string>

#include "platform/RemoteNotificationCenter.h"

namespace quillmar {

/// The notifications of the desktop, `org.freedesktop.Notifications`. A server that answers shows what it is
/// given, as far as the user has not told it otherwise; where there is none, nothing may be shown.
class DBusNotifications final : public RemoteNotificationCenter {
public:
    Task<RemoteNotificationAuthorizationStatus> authorizationStatus() override;
    Task<void> requestAuthorization() override;
    Task<void> removeDelivered(std::string identifier) override;
    Task<void> add(RemoteNotificationRequest request) override;

private:
    /// What is shown, by the server that shows it and its number there. Another server, or the same one
    /// started anew, has another unique name, and gives the number to somebody else's notification.
    struct Shown {
        std::string server;
        std::uint32_t number;
    };
    std::map<std::string, Shown> delivered_;
};

}  // namespace quillmar
