#pragma once
#include <map>
#include <stdexcept>

#include "platform/RemoteNotificationCenter.h"

namespace quillmar {

/// A desktop's notifications: `shown` is what the user sees.
class FakeNotificationCenter final : public RemoteNotificationCenter {
public:
    RemoteNotificationAuthorizationStatus status = RemoteNotificationAuthorizationStatus::authorized;
    std::map<std::string, RemoteNotificationRequest> shown;
    int requestCount = 0;
    int addCount = 0;
    std::string requestError;  ///< of the next requests for leave
    std::string addError;      ///< of the next notifications

    Task<RemoteNotificationAuthorizationStatus> authorizationStatus() override { co_return status; }
    Task<void> requestAuthorization() override {
        ++requestCount;
        if (!requestError.empty()) throw std::runtime_error(requestError);
        status = RemoteNotificationAuthorizationStatus::authorized;
        co_return;
    }
    Task<void> removeDelivered(std::string identifier) override {
        shown.erase(identifier);
        co_return;
    }
    Task<void> add(RemoteNotificationRequest request) override {
        ++addCount;
        if (!addError.empty()) throw std::runtime_error(addError);
        if (shown.contains(request.identifier)) throw std::logic_error("two under one identifier");
        shown.emplace(request.identifier, request);
        co_return;
    }
};

}  // namespace quillmar
