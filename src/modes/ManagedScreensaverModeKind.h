#pragma once
#include "modes/PresentationKind.h"

namespace quillmar {

/// A screensaver can show whatever there is.
using ManagedScreensaverModeKind = PresentationKind;

/// Whether the kind shows pictures in turn, and so has a transition to set.
inline bool offersTransition(ManagedScreensaverModeKind kind) {
    return kind == ManagedScreensaverModeKind::slideshow || isRemote(kind);
}

}  // namespace quillmar
