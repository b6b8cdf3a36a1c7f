#pragma once
#include "app/BackupCommand.h"
#include "app/Subsystems.h"

namespace quillmar {

/// Carries out what the command line asks of the running program. Main thread.
class ControlService {
public:
    /// `quit` is the user's explicit wish to end.
    ControlService(const Platform& platform, Subsystems& subsystems, std::function<void()> quit);
    Task<ControlReply> handle(ControlCall call);

private:
    BackupCommand backup_;
    std::function<void()> quit_;
    MainLoop& loop_;
    Scheduled quitting_;
};

}  // namespace quillmar
