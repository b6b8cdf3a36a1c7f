#include "modes/LockScreenMode.h"

#include "modes/DefaultMode.h"

namespace quillmar {

LockScreenMode LockScreenMode::defaultMode(LockScreenModeKind kind) {
    return makeDefaultMode<LockScreenMode>(kind);
}

WallpaperMode LockScreenMode::wallpaperMode() const {
    return std::visit([](const auto& settings) { return WallpaperMode{settings}; }, value);
}

bool LockScreenMode::isRemote() const {
    switch (kind()) {
        case LockScreenModeKind::disabled:
        case LockScreenModeKind::solidColor:
        case LockScreenModeKind::image:
        case LockScreenModeKind::slideshow: return false;
        default: return true;
    }
}

}  // namespace quillmar
