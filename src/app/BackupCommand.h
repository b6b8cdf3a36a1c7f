#pragma once
#include <string>
#include <vector>

#include "platform/ControlChannel.h"
#include "settings/backup/BackupSettingsModel.h"

namespace quillmar {

/// `quillmar backup ...`: export, inspect, restore and reset from a shell, in the running program or, when
/// there is none, on the settings file itself. Main thread.
class BackupCommand {
public:
    explicit BackupCommand(BackupSettingsModel::Services services) : services_(std::move(services)) {}

    /// `call.arguments` begins with "backup".
    Task<ControlReply> run(ControlCall call);

private:
    struct Arguments;
    static Arguments parse(const ControlCall& call);
    Task<ControlReply> exportTo(Arguments arguments);
    Task<ControlReply> inspect(Arguments arguments);
    Task<ControlReply> restore(Arguments arguments);
    Task<ControlReply> reset();

    BackupSettingsModel::Services services_;
};

}  // namespace quillmar
