#include "linux/session/SessionStart.h"

namespace quillmar {

bool isStartedBySession(const Environment& environment, pid_t process) {
    if (environment.contains("DESKTOP_AUTOSTART_ID") || environment.contains("DBUS_STARTER_ADDRESS"))
        return true;
    // Whatever a service starts inherits the variable, the whole desktop among it.
    const auto unit = environment.find("SYSTEMD_EXEC_PID");
    return unit != environment.end() && unit->second == std::to_string(process);
}

}  // namespace quillmar
