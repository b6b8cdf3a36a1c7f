#pragma once
#include <memory>

#include "platform/RunningInstances.h"

namespace quillmar {

/// Instances that find each other on the session bus, as an application that can be activated. Where there is
/// no bus each instance is on its own.
class DBusRunningInstances final : public RunningInstances {
public:
    DBusRunningInstances();
    DBusRunningInstances(const DBusRunningInstances&) = delete;
    DBusRunningInstances& operator=(const DBusRunningInstances&) = delete;
    ~DBusRunningInstances() override;

    Task<bool> activateOther() override;
    void publish(std::function<void()> onActivate) override;

private:
    struct Publication;
    std::unique_ptr<Publication> publication_;
};

}  // namespace quillmar
