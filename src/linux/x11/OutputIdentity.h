#pragma once
#include <map>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/Uuid.h"

namespace quillmar {

/// A connected output of the window server, whether it shows something or is switched off.
struct ConnectedOutput {
    std::uint32_t number = 0;  ///< the window server's own name for it
    std::string connector;
    Bytes edid;  ///< as the monitor sent it; empty when it sends none
};

/// The lasting identity of each output's monitor, by the output's number. It follows from the monitor alone,
/// so that a monitor keeps it on another connector; where the monitor says nothing of itself, or two that are
/// connected say the same, the connector makes the difference.
std::map<std::uint32_t, Uuid> outputUuids(const std::vector<ConnectedOutput>& outputs);

/// What a person calls the output's monitor: its own name, else its maker and model, else the connector.
std::string outputName(const ConnectedOutput& output);

}  // namespace quillmar
