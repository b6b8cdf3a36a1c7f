#pragma once
#include <optional>
#include <vector>

#include "linux/x11/OutputIdentity.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

/// Every output with a monitor, also those that are switched off, in the X server's order. An output that
/// goes away meanwhile is left out.
std::vector<ConnectedOutput> connectedOutputs(const X11Server& server);

/// The part of the root window that the output shows now; nothing when it shows none.
std::optional<PixelRect> outputArea(const X11Server& server, std::uint32_t output);

}  // namespace quillmar
