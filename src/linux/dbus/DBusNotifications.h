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
    std::map<std::string, std::uint32_t> delivered_;  ///< the server's number of what is shown
};

}  // namespace quillmar
