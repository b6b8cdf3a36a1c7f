#pragma once
#include <filesystem>
#include <string>

#include "async/Executor.h"
#include "platform/LoginItemRegistering.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The login item as a desktop entry in the user's autostart folder. What a session's own tool or the user
/// wrote into it stays where it can; an entry of that name that starts another program is left alone.
class AutostartEntry final : public LoginItemRegistering {
public:
    /// `program` is what the session shall start. `files` runs one job after the other.
    AutostartEntry(Executor& files, const Environment& environment, std::filesystem::path program);

    Task<LoginItemRegistrationStatus> status() override;
    Task<void> registerItem() override;
    Task<void> unregister() override;

private:
    struct Place {
        std::filesystem::path file;  ///< empty where there is no folder for it
        std::filesystem::path program;
        std::string desktops;  ///< names of the running one, with colons between
    };
    static LoginItemRegistrationStatus statusOf(const Place& place);
    static void write(const Place& place);
    static void remove(const Place& place);

    Executor& files_;
    const Place place_;
};

}  // namespace quillmar
