#pragma once
#include <span>
#include <string_view>

#include "base/Localization.h"
#include "modes/LockScreenMode.h"
#include "modes/ManagedScreensaverModeKind.h"
#include "modes/WallpaperModeKind.h"

namespace quillmar {

/// One row of a mode picker.
template <class Kind>
struct ModeOption {
    Kind kind;
    TextKey title;
    TextKey subtitle;
    std::string_view imageAssetName;  ///< preview picture
    std::string_view systemImage;     ///< symbol, to be mapped to the desktop's icons
};
using WallpaperModeOption = ModeOption<WallpaperModeKind>;
using LockScreenModeOption = ModeOption<LockScreenModeKind>;
using ScreensaverModeOption = ModeOption<ManagedScreensaverModeKind>;

/// One row for each kind, in the order in which the picker shows them.
std::span<const WallpaperModeOption> wallpaperModeOptions();
std::span<const LockScreenModeOption> lockScreenModeOptions();
std::span<const ScreensaverModeOption> screensaverModeOptions();

TextKey title(WallpaperModeKind kind);
TextKey title(LockScreenModeKind kind);
TextKey title(ManagedScreensaverModeKind kind);

}  // namespace quillmar
