#pragma once
#include <exception>

#include "async/Task.h"
#include "display/DisplayInfo.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// Tells the user that a picture service failed a display. Main thread. Never throws but for a cancelled
/// task.
class RemoteWallpaperErrorNotifying {
public:
    virtual ~RemoteWallpaperErrorNotifying() = default;
    virtual Task<void> notify(std::exception_ptr error, DisplayInfo display, WallpaperMode mode) = 0;
};

}  // namespace quillmar
