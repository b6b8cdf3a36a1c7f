#pragma once
#include <array>
#include <string_view>

#include "async/Task.h"

namespace quillmar {

/// Whether the session starts the program when the user logs in.
enum class LoginItemRegistrationStatus {
    notRegistered,
    enabled,
    requiresApproval,  ///< the user asked for it, and this session holds it back
    notFound           ///< something stands in its place, or it leads to a program that is not there
};
constexpr auto enumNames(LoginItemRegistrationStatus) {
    return std::to_array<std::string_view>({"notRegistered", "enabled", "requiresApproval", "notFound"});
}

/// The programs that the session starts, as far as this one is concerned. Main thread.
class LoginItemRegistering {
public:
    virtual ~LoginItemRegistering() = default;
    virtual Task<LoginItemRegistrationStatus> status() = 0;
    /// Has the program started at login from now on. Throws an `AppLocalizableError` when that fails.
    virtual Task<void> registerItem() = 0;
    /// As `registerItem`, and no longer.
    virtual Task<void> unregister() = 0;
};

}  // namespace quillmar
