#pragma once
#include "platform/DesktopPicture.h"
#include "storage/CacheSweep.h"

namespace quillmar {

/// The files that the desktop shows now, on all screens together; a screen without one counts for nothing.
/// Main thread.
FilePaths desktopImageFiles(const ScreensProviding& screens, DesktopPicturing& desktop);

}  // namespace quillmar
