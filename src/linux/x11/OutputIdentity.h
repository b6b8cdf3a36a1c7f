#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/PixelRect.h"
#include "display/OutputIdentities.h"

namespace quillmar {

/// A connected output of the window server, whether it shows something or is switched off.
struct ConnectedOutput {
    std::uint32_t number = 0;  ///< the window server's own name for it
    std::string connector;
    Bytes edid;                     ///< as the monitor sent it; empty when it sends none
    std::optional<PixelRect> area;  ///< of the root window that it shows; nothing when switched off
};

/// What the identities of the outputs' monitors follow from, in the outputs' order.
std::vector<PluggedMonitor> pluggedMonitors(const std::vector<ConnectedOutput>& outputs);

/// What a person calls the output's monitor: its own name, else its maker and model, else the connector.
std::string outputName(const ConnectedOutput& output);

}  // namespace quillmar
