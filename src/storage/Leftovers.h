#pragma once
#include "base/WallTime.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Removes the half files that processes of the program left in the folders which it writes to, when they
/// were killed before `before`. In folders that are the user's too, only those whose names nobody else makes.
/// Waits for the disk; what cannot be removed stays.
void removeLeftovers(const Environment& environment, WallTime before);

}  // namespace quillmar
