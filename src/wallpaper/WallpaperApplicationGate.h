#pragma once

namespace quillmar {

/// Whether the Lock Screen's pictures own the desktop. While they do, no wallpaper is set. Main thread;
/// written by the Lock Screen's coordinator alone.
struct WallpaperApplicationGate {
    bool isLockScreenOverrideActive = false;
};

}  // namespace quillmar
