#pragma once
#include "async/AsyncMutex.h"

namespace quillmar {

/// Puts the transactions of the settings in line. It is the outermost lock: taken before any other; its
/// holder may wait for the disk, never for the user.
class SettingsTransactionGate final : public AsyncMutex {};

}  // namespace quillmar
