#include "linux/x11/OutputIdentity.h"

#include <fmt/format.h>

#include "linux/x11/Edid.h"

namespace quillmar {

std::vector<PluggedMonitor> pluggedMonitors(const std::vector<ConnectedOutput>& outputs) {
    std::vector<PluggedMonitor> monitors;
    for (const ConnectedOutput& output : outputs) {
        PluggedMonitor monitor{output.connector, ""};
        if (const auto edid = parseEdid(output.edid)) {
            monitor.description = fmt::format("edid:{}-{:04x}-{:08x}-{}", edid->maker, edid->product,
                                              edid->serialNumber, edid->serialText);
        }
        monitors.push_back(std::move(monitor));
    }
    return monitors;
}

std::string outputName(const ConnectedOutput& output) {
    const auto edid = parseEdid(output.edid);
    if (!edid) return output.connector;
    if (!edid->monitorName.empty()) return edid->monitorName;
    return fmt::format("{} {:04X}", edid->maker, edid->product);
}

}  // namespace quillmar
