#pragma once
#include "async/TaskLock.h"

namespace quillmar {

/// Puts the transactions of the settings in line, first come first served. It is the outermost lock: taken
/// before any other; its holder may wait for the disk, never for the user.
using SettingsTransactionGate = TaskLock;

}  // namespace quillmar
