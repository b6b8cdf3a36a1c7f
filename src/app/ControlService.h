#pragma once
#include "app/BackupCommand.h"
#include "app/GeneralCommand.h"
#include "app/Subsystems.h"
#include "app/WallpaperCommand.h"

namespace quillmar {

/// Carries out what the command line asks of the running program. Main thread.
class ControlService {
public:
    /// `quit` is the user's explicit wish to end.
    ControlService(const Ports& platform, Subsystems& subsystems, std::function<void()> quit);
    Task<ControlReply> handle(ControlCall call);

private:
    static Task<std::optional<Bytes>> grantFor(Executor* files, Url url);

    static Task<std::string> readKey(Executor* files, std::filesystem::path file);

    BackupCommand backup_;
    WallpaperCommand wallpaper_;
    GeneralCommand general_;
    std::function<void()> quit_;
    MainLoop& loop_;
    Scheduled quitting_;
};

}  // namespace quillmar
