#pragma once
#include "linux/x11/X11Connection.h"

namespace quillmar {

/// The window manager's workspaces, counted from 0.
struct Workspaces {
    int count = 1;
    int shown = 0;
};

/// As the root window says it; one workspace where nothing is said. Throws `X11Failure` when there is no
/// answer.
Workspaces workspaces(const X11Connection& connection);

}  // namespace quillmar
