#pragma once
#include <sys/types.h>

#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Whether this process was started by the session: among what starts at login, by the service manager or by
/// the message bus. `process` is its ID. Some desktops leave no sign of it.
bool isStartedBySession(const Environment& environment, pid_t process);

}  // namespace quillmar
