#pragma once
#include <string>

#include "async/Task.h"

namespace quillmar {

/// Whether the user lets the program show notifications.
enum class RemoteNotificationAuthorizationStatus {
    unknown,
    notDetermined,
    denied,
    authorized,
    provisional,
    ephemeral
};

/// A notification to be shown now.
struct RemoteNotificationRequest {
    std::string identifier;
    std::string title;
    std::string body;  ///< plain text
    bool operator==(const RemoteNotificationRequest&) const = default;
};

/// The desktop's notifications. Main thread. No operation takes longer than a few seconds.
class RemoteNotificationCenter {
public:
    virtual ~RemoteNotificationCenter() = default;
    virtual Task<RemoteNotificationAuthorizationStatus> authorizationStatus() = 0;
    /// Asks the user, where the desktop has such a question. Throws `std::runtime_error` when it cannot.
    virtual Task<void> requestAuthorization() = 0;
    /// Takes back what is shown under the identifier; nothing when there is none.
    virtual Task<void> removeDelivered(std::string identifier) = 0;
    /// Shows a notification with the default sound. Throws `std::runtime_error` when it cannot.
    virtual Task<void> add(RemoteNotificationRequest request) = 0;
};

}  // namespace quillmar
