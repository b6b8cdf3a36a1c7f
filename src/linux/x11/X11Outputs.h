#pragma once
#include <optional>
#include <vector>

#include "linux/x11/OutputIdentity.h"
#include "base/PixelRect.h"

struct _XDisplay;

namespace quillmar {

/// Every output with a monitor, also those that are switched off, in the X server's order. An output that
/// goes away meanwhile is left out.
std::vector<ConnectedOutput> connectedOutputs(_XDisplay* display);

/// The part of the root window that the output shows now; nothing when it shows none.
std::optional<PixelRect> outputArea(_XDisplay* display, std::uint32_t output);

}  // namespace quillmar
