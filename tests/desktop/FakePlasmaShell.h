#pragma once
#include <string>

namespace quillmar {

/// A stand-in for KDE Plasma's desktop on the session bus, until the process is ended: runs the scripts that
/// it is sent, on three desktops of its own making. It says "ready" when it can be called. The desktops are
/// on the screens 0 (in the corner), 1 (1920 to the right, in points of two pixels) and on none.
int playPlasmaShell();

/// Runs a script in it from outside and returns what the script printed.
std::string inPlasmaShell(const std::string& script);

}  // namespace quillmar
