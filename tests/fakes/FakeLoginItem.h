#pragma once
#include <optional>
#include <stdexcept>

#include "platform/LoginItemRegistering.h"

namespace quillmar {

/// A session's list of programs.
class FakeLoginItem final : public LoginItemRegistering {
public:
    explicit FakeLoginItem(LoginItemRegistrationStatus status = LoginItemRegistrationStatus::notRegistered)
        : present(status) {}

    LoginItemRegistrationStatus present;
    std::string error;    ///< of the next changes
    bool isDeaf = false;  ///< changes are taken and come to nothing
    int changeCount = 0;

    Task<LoginItemRegistrationStatus> status() override { co_return present; }
    Task<void> registerItem() override { return become(LoginItemRegistrationStatus::enabled); }
    Task<void> unregister() override { return become(LoginItemRegistrationStatus::notRegistered); }

private:
    Task<void> become(LoginItemRegistrationStatus wanted) {
        ++changeCount;
        if (!error.empty()) throw std::runtime_error(error);
        if (!isDeaf) present = wanted;
        co_return;
    }
};

}  // namespace quillmar
