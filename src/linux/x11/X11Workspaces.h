#pragma once
#include <string>

namespace quillmar {

/// The window manager's workspaces, counted from 0.
struct Workspaces {
    int count = 1;
    int shown = 0;
};

/// As the root window of the X server `display` says it (empty: the environment's); one workspace where
/// nothing is said. Throws `std::runtime_error` when there is no X server.
Workspaces workspaces(const std::string& display = {});

}  // namespace quillmar
