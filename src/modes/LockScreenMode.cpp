#include "modes/LockScreenMode.h"

#include "modes/DefaultMode.h"

namespace quillmar {

LockScreenMode LockScreenMode::defaultMode(LockScreenModeKind kind) {
    return makeDefaultMode<LockScreenMode>(kind);
}

WallpaperMode LockScreenMode::wallpaperMode() const {
    return std::visit([](const auto& settings) { return WallpaperMode{settings}; }, value);
}

}  // namespace quillmar
